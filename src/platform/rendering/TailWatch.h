#pragma once

#include <atomic>
#include <memory>

#include "platform/rendering/PictureReceiver.h"

namespace rendering {

/// Passes a picture on and notices whether anything but white comes below its first rows.
class TailWatch : public PictureReceiver {
 public:
  /// `firstRows` in device pixels.
  TailWatch(std::shared_ptr<PictureReceiver> receiver, int firstRows)
      : receiver_(std::move(receiver)), firstRows_(firstRows) {}

  MaybeError began(QSize devicePixels) override;
  MaybeError rows(const QImage& band) override;

  /// Whether the rows below the first ones were all white, and there were some. Any thread.
  bool tailIsBlank() const { return row_ > firstRows_ && !painted_; }

 private:
  const std::shared_ptr<PictureReceiver> receiver_;
  const int firstRows_;
  std::atomic<int> row_ = 0;
  std::atomic<bool> painted_ = false;
};

}  // namespace rendering
