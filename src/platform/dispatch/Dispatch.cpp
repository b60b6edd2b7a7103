#include "platform/dispatch/Dispatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QRunnable>
#include <QThread>
#include <QThreadPool>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

namespace dispatch {
namespace {

/// The main queue's receiver, guarded because any thread may send while the program ends.
struct MainQueue {
  std::mutex mutex;
  std::unique_ptr<QObject> receiver;
};

MainQueue& mainQueue() {
  static MainQueue queue;
  return queue;
}

/// Threads that block in `mainSync` or wait for the engine occupy their place, so the pool is
/// larger than the number of cores.
QThreadPool& pool() {
  static auto* threads = [] {
    auto* created = new QThreadPool;
    created->setMaxThreadCount(qMax(16, 2 * QThread::idealThreadCount()));
    return created;
  }();
  return *threads;
}

/// One blocking call. Released on destruction too: work that is dropped unrun must not leave the
/// caller waiting.
class Handshake {
 public:
  void release() {
    std::lock_guard lock(mutex_);
    done_ = true;
    condition_.notify_all();
  }
  void wait() {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [this] { return done_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
  bool done_ = false;
};

struct ReleaseOnEnd {
  explicit ReleaseOnEnd(std::shared_ptr<Handshake> shared) : handshake(std::move(shared)) {}
  ReleaseOnEnd(const ReleaseOnEnd&) = delete;
  ReleaseOnEnd& operator=(const ReleaseOnEnd&) = delete;
  ~ReleaseOnEnd() { handshake->release(); }
  std::shared_ptr<Handshake> handshake;
};

/// What the work holds ends on the main thread, right after the work: the posting thread may still
/// have a copy of the call by then, and must not be the last to let go of a page.
bool post(Work work) {
  const auto held = std::make_shared<Work>(std::move(work));
  const auto call = [held] { std::exchange(*held, nullptr)(); };
  MainQueue& queue = mainQueue();
  std::lock_guard lock(queue.mutex);
  if (!queue.receiver) return false;
  return QMetaObject::invokeMethod(queue.receiver.get(), call, Qt::QueuedConnection);
}

}  // namespace

void initialize() {
  MainQueue& queue = mainQueue();
  std::lock_guard lock(queue.mutex);
  queue.receiver = std::make_unique<QObject>();
}

void finish() {
  pool().clear();
  // Running work may be waiting for the main queue: serve it until the pool is idle.
  while (!pool().waitForDone(1))
    QCoreApplication::processEvents();
  std::unique_ptr<QObject> receiver;
  {
    std::lock_guard lock(mainQueue().mutex);
    receiver = std::move(mainQueue().receiver);
  }
  receiver.reset();
  // Timers of the work that was dropped: no event loop comes any more that would delete them.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool isMainThread() {
  const QCoreApplication* application = QCoreApplication::instance();
  return application && application->thread() == QThread::currentThread();
}

void mainAsync(Work work) {
  post(std::move(work));
}

void mainSync(const Work& work) {
  if (isMainThread()) return work();
  auto handshake = std::make_shared<Handshake>();
  auto release = std::make_shared<ReleaseOnEnd>(handshake);
  const bool posted = post([&work, release = std::move(release)] { work(); });
  if (posted) handshake->wait();
}

void globalAsync(Priority priority, Work work) {
  QRunnable* runnable = QRunnable::create(std::move(work));
  pool().start(runnable, priority == Priority::High ? 1 : 0);
}

}  // namespace dispatch
