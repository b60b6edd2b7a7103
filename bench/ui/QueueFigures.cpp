// How long the main thread is held up, and what a row costs, with a thousand entries in the window:
// corvalis_ui_queue_figures [entries]. A stall is the longest time between two turns of the event
// loop in which a timer of 0 ms is served.

#include <malloc.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTimer>
#include <cstdio>

#include "Program.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVDefaultPreferences.h"
#include "support/Wait.h"
#include "ui/queue/QueueTableView.h"

using namespace Qt::StringLiterals;
using test::Program;

namespace {

/// Watches the event loop from its making to its end.
class StallWatch {
 public:
  StallWatch() {
    clock_.start();
    QObject::connect(&timer_, &QTimer::timeout, [this] { turn(); });
    timer_.start(0);
  }
  void turn() { longest_ = qMax(longest_, clock_.nsecsElapsed() / 1e6), clock_.restart(); }
  double longestMilliseconds() {
    turn();
    return longest_;
  }

 private:
  QTimer timer_;
  QElapsedTimer clock_;
  double longest_ = 0;
};

template <class Work>
void measure(const char* name, Work work) {
  QElapsedTimer whole;
  whole.start();
  StallWatch watch;
  work();
  Program::settle();
  std::printf("%-42s %8.1f ms, longest stall %6.1f ms\n", name, double(whole.nsecsElapsed()) / 1e6,
              watch.longestMilliseconds());
}

double megabytesInUse() {
  const struct mallinfo2 use = mallinfo2();
  return double(use.uordblks + use.hblkhd) / 1e6;
}

std::shared_ptr<const imaging::Image> thumbnail() {
  QImage page(128, 92, QImage::Format_RGB32);
  page.fill(Qt::lightGray);
  return std::make_shared<imaging::Image>(page);
}

void fill(Program& program, int count) {
  for (int page = 0; page < count; ++page) {
    auto entry = std::make_shared<test::Entry>(u"http://127.0.0.1/page/%1"_s.arg(page));
    program.table->addEntry(entry);
    entry->setTitle(u"Page number %1"_s.arg(page));
    entry->setRepresentativeImage(thumbnail());
    entry->setState(CVEntryStateDownloaded);
  }
}

void fillFromWorker(Program& program, int count) {
  std::atomic<bool> filled = false;
  dispatch::globalAsync(dispatch::Priority::Default, [&] {
    fill(program, count);
    filled = true;
  });
  support::waitFor([&] { return filled.load(); }, std::chrono::seconds(120));
}

void scrollThrough(ui::QueueTableView& view) {
  QScrollBar& bar = *view.verticalScrollBar();
  for (int step = 0; step <= 200; ++step) {
    bar.setValue(bar.maximum() * step / 200);
    QCoreApplication::processEvents();
  }
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  dispatch::initialize();
  const int count = argc > 1 ? std::atoi(argv[1]) : 1000;
  {
    Program program;
    program.preferences().setSystemNotifications(false);
    auto& view = *program.window->findChild<ui::QueueTableView*>();
    measure("200 at once", [&] { fillFromWorker(program, 200); });
    measure("cleared", [&] { program.delegate->clearAll(); });
    const double before = megabytesInUse();
    measure("all added by a worker", [&] { fillFromWorker(program, count); });
    measure("scrolled from end to end", [&] { scrollThrough(view); });
    std::printf("%-42s %8.1f KB\n", "memory of one row and its entry",
                (megabytesInUse() - before) * 1000 / count);
    measure("every state changed", [&] {
      for (const auto& entry : program.table->getEntries())
        entry->setState(CVEntryStateDone);
    });
    measure("theme changed", [&] { program.preferences().setTheme(u"dark"_s); });
    measure("completed cleared", [&] { program.delegate->clearCompleted(); });
    measure("all added by the main thread", [&] { fill(program, count); });
    measure("all cleared", [&] { program.delegate->clearAll(); });
  }
  dispatch::finish();
}
