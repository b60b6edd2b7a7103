#pragma once

#include <chrono>
#include <functional>
#include <memory>

class QTimer;

namespace dispatch {

/// A timer on the main queue. Cancelled by `cancel` or by its destruction; then it never fires
/// again. Main thread only.
class Timer {
 public:
  enum class Repeat { Once, Forever };

  static std::unique_ptr<Timer> after(std::chrono::milliseconds interval,
                                      std::function<void()> fire);
  static std::unique_ptr<Timer> every(std::chrono::milliseconds interval,
                                      std::function<void()> fire);

  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  void cancel();

 private:
  Timer(std::chrono::milliseconds interval, Repeat repeat, std::function<void()> fire);

  std::unique_ptr<QTimer> timer_;
};

}  // namespace dispatch
