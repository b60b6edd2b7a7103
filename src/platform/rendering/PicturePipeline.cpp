#include "platform/rendering/PicturePipeline.h"

#include <QPainter>

#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/RenderingError.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

/// Rounding in the engine can make a strip differ by a row or column from its place.
QImage fitted(const QImage& image, QSize size) {
  if (image.size() == size) return image;
  QImage place(size, QImage::Format_RGB32);
  place.fill(Qt::white);
  QPainter(&place).drawImage(0, 0, image);
  return place;
}

Result<QImage> decoded(const QByteArray& png, QSize size) {
  const QImage image = QImage::fromData(png, "PNG");
  const QSize difference = image.size() - size;
  const bool usable =
      !image.isNull() && qAbs(difference.width()) <= 1 && qAbs(difference.height()) <= 1;
  if (!usable) {
    return tl::unexpected(
        makeError(DamagedPicture, u"The page engine's picture of the page could not be read."_s));
  }
  return fitted(image.convertToFormat(QImage::Format_RGB32), size);
}

}  // namespace

PicturePipeline::PicturePipeline(std::shared_ptr<PictureReceiver> receiver,
                                 std::function<void(MaybeError)> delivered)
    : receiver_(std::move(receiver)), delivered_(std::move(delivered)) {}

void PicturePipeline::begin(QSize picture) {
  push([picture](PictureReceiver& receiver) { return receiver.began(picture); }, 0);
}

void PicturePipeline::add(QByteArray png, QSize size) {
  ++waiting_;
  push(
      [png = std::move(png), size](PictureReceiver& receiver) -> MaybeError {
        const Result<QImage> image = decoded(png, size);
        if (!image) return image.error();
        return receiver.rows(*image);
      },
      1);
}

void PicturePipeline::stop() {
  std::lock_guard lock(mutex_);
  stopped_ = true;
  jobs_.clear();
}

void PicturePipeline::push(Job job, int strips) {
  std::lock_guard lock(mutex_);
  if (stopped_) return;
  jobs_.push_back({std::move(job), strips});
  if (working_) return;
  working_ = true;
  dispatch::globalAsync(dispatch::Priority::High, [self = shared_from_this()] { self->work(); });
}

void PicturePipeline::work() {
  for (;;) {
    Entry next;
    {
      std::lock_guard lock(mutex_);
      if (jobs_.empty()) {
        working_ = false;
        return;
      }
      next = std::move(jobs_.front());
      jobs_.pop_front();
    }
    MaybeError error = next.job(*receiver_);
    if (error) stop();
    // The job's strip must not outlive its turn: the next one may already be decoded.
    next.job = {};
    dispatch::mainAsync([self = shared_from_this(), strips = next.strips,
                         error = std::move(error)] { self->report(strips, error); });
  }
}

void PicturePipeline::report(int strips, MaybeError error) {
  waiting_ -= strips;
  delivered_(std::move(error));
}

}  // namespace rendering
