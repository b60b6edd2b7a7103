#include "ui/controls/CVScaleToFillImageView.h"

#include <QPainter>
#include <QPainterPath>

CVScaleToFillImageView::CVScaleToFillImageView(QWidget* parent) : QWidget(parent) {
  setImageScaling(ImageScaling::AxesIndependently);
}

void CVScaleToFillImageView::setImageScaling(ImageScaling) {
  update();
}

void CVScaleToFillImageView::setImage(const QImage& image) {
  if (image.cacheKey() == image_.cacheKey() && wrapperSize_ == size()) return;
  image_ = image;
  wrapperSize_ = image.isNull() ? QSize() : size();
  scaled_ = {};
  update();
}

void CVScaleToFillImageView::setCornerRadius(double radius) {
  cornerRadius_ = radius;
  update();
}

void CVScaleToFillImageView::setFrameColor(const QColor& color) {
  frameColor_ = color;
  update();
}

QRectF CVScaleToFillImageView::sourceRectangle(const QSizeF& image, const QSizeF& view) {
  const double imageRatio = image.height() / image.width();
  const double viewRatio = view.height() / view.width();
  QSizeF part = image;
  if (viewRatio > imageRatio) {
    part.setWidth(image.height() / viewRatio);
  } else {
    part.setHeight(image.width() * viewRatio);
  }
  return {QPointF((image.width() - part.width()) / 2, (image.height() - part.height()) / 2), part};
}

/// Kept for the size and density that it was made for: rows are painted far more often than
/// resized.
const QPixmap& CVScaleToFillImageView::scaledPart() {
  const QSize pixels = size() * devicePixelRatioF();
  if (scaled_.size() == pixels) return scaled_;
  const QRect part = sourceRectangle(image_.size(), size()).toAlignedRect();
  scaled_ =
      QPixmap::fromImage(image_.copy(part.intersected(image_.rect()))
                             .scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  scaled_.setDevicePixelRatio(devicePixelRatioF());
  return scaled_;
}

void CVScaleToFillImageView::paintEvent(QPaintEvent*) {
  if (image_.isNull() || size().isEmpty()) return;
  QPainter painter(this);
  if (cornerRadius_ <= 0) {
    painter.drawPixmap(0, 0, scaledPart());
    return;
  }
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QBrush(scaledPart()));
  painter.drawRoundedRect(QRectF(rect()), cornerRadius_, cornerRadius_);
  if (!frameColor_.isValid()) return;
  painter.setPen(QPen(frameColor_, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius_,
                          cornerRadius_);
}
