#include "platform/imaging/Image.h"

#include <QPainter>
#include <cmath>

namespace imaging {

namespace {

bool hasArea(QSizeF size) {
  return std::isfinite(size.width()) && std::isfinite(size.height()) && size.width() > 0 &&
         size.height() > 0;
}

QSize pixelSize(QSizeF points, double pixelsPerPoint) {
  const auto pixels = [&](double length) {
    return int(std::min(std::ceil(length * pixelsPerPoint), 65'535.0));
  };
  return {pixels(points.width()), pixels(points.height())};
}

/// Where a picture of `size` lies in `target`. The factors are compared in single precision, so
/// that sizes of the same shape never leave a margin of a rounding error's width.
QRectF proportionalPlace(QSizeF size, QSizeF target) {
  if (size == target) return {QPointF(), target};
  const float widthFactor = float(target.width()) / float(size.width());
  const float heightFactor = float(target.height()) / float(size.height());
  const QSizeF scaled = size * double(std::min(widthFactor, heightFactor));
  QPointF offset;
  if (heightFactor > widthFactor) offset.setY((target.height() - scaled.height()) * 0.5);
  if (widthFactor > heightFactor) offset.setX((target.width() - scaled.width()) * 0.5);
  return {offset, scaled};
}

/// The painter looks at four source pixels only and would drop the rest of a picture that shrinks
/// to less than half: such a picture is averaged down first.
QImage averagedDown(const QImage& source, QSize wanted) {
  if (source.width() < 2 * wanted.width() && source.height() < 2 * wanted.height()) return source;
  return source.scaled(wanted.expandedTo({1, 1}), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

Image::Image(QImage pixels) : Image(pixels, pixels.deviceIndependentSize()) {}

Image::Image(QImage pixels, QSizeF sizeInPoints) : pixels_(std::move(pixels)), size_(sizeInPoints) {
  pixels_.setDevicePixelRatio(1);
}

bool Image::isValid() const {
  return !pixels_.isNull() && hasArea(size_);
}

std::shared_ptr<const Image> Image::imageByScalingProportionallyToSize(
    QSizeF target, double pixelsPerPoint) const {
  if (!isValid() || !hasArea(target)) return {};
  QImage canvas(pixelSize(target, pixelsPerPoint), QImage::Format_ARGB32_Premultiplied);
  if (canvas.isNull()) return {};
  canvas.fill(Qt::transparent);
  const QRectF place = proportionalPlace(size_, target);
  QPainter painter(&canvas);
  painter.setRenderHints(QPainter::SmoothPixmapTransform | QPainter::Antialiasing);
  painter.scale(pixelsPerPoint, pixelsPerPoint);
  painter.drawImage(place, averagedDown(pixels_, pixelSize(place.size(), pixelsPerPoint)));
  painter.end();
  return std::make_shared<const Image>(std::move(canvas), target);
}

std::shared_ptr<const Image> Image::swatchWithColor(const QColor& color, QSizeF size) {
  QImage canvas(hasArea(size) ? pixelSize(size, 1) : QSize(), QImage::Format_ARGB32_Premultiplied);
  if (!canvas.isNull()) canvas.fill(color);
  return std::make_shared<const Image>(std::move(canvas), size);
}

std::shared_ptr<const Image> Image::swatchForThumbnail() {
  return swatchWithColor(Qt::white, {400, 300});
}

}  // namespace imaging
