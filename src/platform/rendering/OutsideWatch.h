#pragma once

#include <atomic>
#include <memory>

#include "platform/rendering/PictureReceiver.h"

namespace rendering {

/// Passes a picture on and notices whether anything but white comes outside its top left corner.
class OutsideWatch : public PictureReceiver {
 public:
  /// `corner` in device pixels.
  OutsideWatch(std::shared_ptr<PictureReceiver> receiver, QSize corner)
      : receiver_(std::move(receiver)), corner_(corner) {}

  MaybeError began(QSize devicePixels) override;
  MaybeError rows(const QImage& band) override;

  /// Whether all that came outside the corner was white, and there was some. Any thread.
  bool outsideIsBlank() const { return reachesOutside_ && !painted_; }

 private:
  const std::shared_ptr<PictureReceiver> receiver_;
  const QSize corner_;
  int row_ = 0;
  std::atomic<bool> reachesOutside_ = false;
  std::atomic<bool> painted_ = false;
};

}  // namespace rendering
