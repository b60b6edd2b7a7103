#include "platform/web/Transport.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr std::size_t readSize = std::size_t{1} << 20;
/// A buffer that one large reply has grown is given back afterwards.
constexpr std::size_t keptBufferSize = 4 * readSize;

void makeNonBlocking(int descriptor) {
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

bool isTemporary(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

}  // namespace

Transport::Transport(FileDescriptor readEnd, FileDescriptor writeEnd, Handlers handlers)
    : readEnd_(std::move(readEnd)),
      writeEnd_(std::move(writeEnd)),
      wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      handlers_(std::move(handlers)) {
  makeNonBlocking(readEnd_.get());
  makeNonBlocking(writeEnd_.get());
  thread_ = std::thread([this] { run(); });
}

Transport::~Transport() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake();
  thread_.join();
}

void Transport::send(QByteArray message) {
  message.append('\0');
  {
    std::lock_guard lock(mutex_);
    output_.push_back(std::move(message));
  }
  wake();
}

void Transport::wake() {
  const quint64 one = 1;
  // A full counter means that the thread is about to wake anyway.
  [[maybe_unused]] const ssize_t written = ::write(wakeUp_.get(), &one, sizeof one);
}

bool Transport::isStopping() {
  std::lock_guard lock(mutex_);
  return stopping_;
}

bool Transport::hasOutput() {
  std::lock_guard lock(mutex_);
  return !output_.empty();
}

void Transport::run() {
  // Writing to a browser that is gone must be an error, not the end of the program.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  while (serve())
    if (isStopping()) return;
  // Closing at once tells the browser to end even while the owner is still busy.
  readEnd_.reset();
  writeEnd_.reset();
  handlers_.closed(closedReason_);
}

/// One round: waits for something to do and does it. False ends the connection.
bool Transport::serve() {
  pollfd descriptors[] = {{readEnd_.get(), POLLIN, 0},
                          {wakeUp_.get(), POLLIN, 0},
                          {hasOutput() ? writeEnd_.get() : -1, POLLOUT, 0}};
  if (::poll(descriptors, std::size(descriptors), -1) < 0) return isTemporary(errno);
  if (descriptors[1].revents) {
    quint64 count = 0;
    [[maybe_unused]] const ssize_t size = ::read(wakeUp_.get(), &count, sizeof count);
  }
  // What the other side wrote before its end is read before a failing write ends the connection.
  if (descriptors[0].revents && !readSome()) return false;
  return !descriptors[2].revents || writeSome();
}

bool Transport::readSome() {
  if (buffer_.size() < filled_ + readSize + padding)
    buffer_.resize(std::max(filled_ + readSize + padding, filled_ + filled_ / 2));
  const ssize_t size = ::read(readEnd_.get(), buffer_.data() + filled_, readSize);
  if (size < 0) return isTemporary(errno);
  if (size == 0) return false;
  const std::size_t scanned = filled_;
  filled_ += static_cast<std::size_t>(size);
  return handOver(scanned);
}

/// Hands over the messages that are complete; bytes before `scanned` hold no NUL.
bool Transport::handOver(std::size_t scanned) {
  std::size_t begin = 0;
  while (const void* found = std::memchr(buffer_.data() + scanned, '\0', filled_ - scanned)) {
    const auto end = static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
    handlers_.message(std::string_view(buffer_.data() + begin, end - begin));
    begin = scanned = end + 1;
    begun_ = false;
  }
  filled_ -= begin;
  std::memmove(buffer_.data(), buffer_.data() + begin, filled_);
  if (filled_ == 0 && buffer_.size() > keptBufferSize) std::vector<char>().swap(buffer_);
  if (filled_ > 0 && !std::exchange(begun_, true)) handlers_.begin({buffer_.data(), filled_});
  if (filled_ <= messageLimit) return true;
  closedReason_ = u"The browser sent a message without an end."_s;
  return false;
}

bool Transport::writeSome() {
  const char* data = nullptr;
  qsizetype size = 0;
  {
    std::lock_guard lock(mutex_);
    data = output_.front().constData() + written_;
    size = output_.front().size() - written_;
  }
  // Only this thread removes messages, so the first one stays where it is without the lock.
  const ssize_t count = ::write(writeEnd_.get(), data, static_cast<std::size_t>(size));
  if (count < 0) return isTemporary(errno);
  std::lock_guard lock(mutex_);
  written_ += count;
  if (count == size) {
    output_.pop_front();
    written_ = 0;
  }
  return true;
}

}  // namespace web
