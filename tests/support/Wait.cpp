#include "Wait.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>

namespace support {

bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  QDeadlineTimer deadline(limit);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QThread::usleep(500);
  }
  return true;
}

}  // namespace support
