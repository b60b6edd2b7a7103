#include "platform/rendering/PicturePipeline.h"

#include <QPainter>

#include "platform/dispatch/Dispatch.h"
#include "platform/imaging/PngReader.h"
#include "platform/rendering/RenderingError.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

/// A band of it is a few megabytes.
constexpr int pixelsPerBand = 1024 * 1024;

/// Rounding in the engine can make a strip differ by a row or column from its place.
QImage fitted(const QImage& band, QSize size) {
  if (band.size() == size) return band;
  QImage place(size, QImage::Format_RGB888);
  place.fill(Qt::white);
  QPainter(&place).drawImage(0, 0, band);
  return place;
}

Error damaged() {
  return makeError(DamagedPicture, u"The page engine's picture of the page could not be read."_s);
}

/// Hands the rows of a strip that must measure `size` to the receiver.
MaybeError deliver(const QByteArray& png, QSize size, PictureReceiver& receiver) {
  const auto strip = imaging::PngReader::create(png);
  if (!strip) return damaged();
  const QSize difference = (*strip)->size() - size;
  if (qAbs(difference.width()) > 1 || qAbs(difference.height()) > 1) return damaged();
  const int rowsPerBand = qMax(1, pixelsPerBand / size.width());
  for (int row = 0; row < size.height(); row += rowsPerBand) {
    const int count = qMin(rowsPerBand, size.height() - row);
    const bool nothingLeft = (*strip)->rowsLeft() == 0;
    const Result<QImage> band = nothingLeft ? QImage() : (*strip)->rows(count);
    if (!band) return damaged();
    if (MaybeError error = receiver.rows(fitted(*band, {size.width(), count}))) return error;
  }
  return {};
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
  push([png = std::move(png),
        size](PictureReceiver& receiver) { return deliver(png, size, receiver); },
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
    // The job's strip must not outlive its turn: the next one has already come.
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
