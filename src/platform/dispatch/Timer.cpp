#include "platform/dispatch/Timer.h"

#include <QTimer>

namespace dispatch {

Timer::Timer(std::chrono::milliseconds interval, Repeat repeat, std::function<void()> fire)
    : timer_(std::make_unique<QTimer>()) {
  timer_->setTimerType(Qt::PreciseTimer);
  timer_->setSingleShot(repeat == Repeat::Once);
  // A copy runs, so that the callback may destroy its own timer.
  QObject::connect(timer_.get(), &QTimer::timeout, timer_.get(), [fire = std::move(fire)] {
    const std::function<void()> running = fire;
    running();
  });
  timer_->start(interval);
}

Timer::~Timer() {
  // The timer may be destroyed from its own callback: Qt's object must then outlive the emission.
  timer_->stop();
  timer_.release()->deleteLater();
}

std::unique_ptr<Timer> Timer::after(std::chrono::milliseconds interval,
                                    std::function<void()> fire) {
  return std::unique_ptr<Timer>(new Timer(interval, Repeat::Once, std::move(fire)));
}

std::unique_ptr<Timer> Timer::every(std::chrono::milliseconds interval,
                                    std::function<void()> fire) {
  return std::unique_ptr<Timer>(new Timer(interval, Repeat::Forever, std::move(fire)));
}

void Timer::cancel() {
  timer_->stop();
}

}  // namespace dispatch
