#pragma once

#include <functional>
#include <memory>
#include <mutex>

class QString;
namespace dispatch {
class Timer;
}

namespace ui {

/// Steps through the fifteen pictures of the drop zone's arrow, ten a second. Main thread.
class ArrowAnimation {
 public:
  /// Called with the name of each picture that is due.
  using Show = std::function<void(const QString& pictureName)>;

  explicit ArrowAnimation(Show show);
  ~ArrowAnimation();

  /// Begins again at the first picture.
  void startAnimatingArrow();
  /// Leaves the picture that is shown.
  void stopAnimatingArrow();
  void updateArrowFrame();

  bool isRunning() const { return arrowTimer_ != nullptr; }

 private:
  const Show show_;
  std::recursive_mutex mutex_;
  std::unique_ptr<dispatch::Timer> arrowTimer_;
  unsigned arrowFrame_ = 0;
};

}  // namespace ui
