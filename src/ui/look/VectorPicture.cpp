#include "ui/look/VectorPicture.h"

#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace ui {
namespace {

constexpr double disabledOpacity = 0.4;

QString cacheKey(const VectorPicture& picture, const QSize& pixels) {
  return u"corvalis/%1/%2x%3/%4/%5/%6"_s.arg(picture.source)
      .arg(pixels.width())
      .arg(pixels.height())
      .arg(picture.colour ? picture.colour->name(QColor::HexArgb) : u"own"_s)
      .arg(picture.offset)
      .arg(picture.opacity);
}

/// As large as fits without changing the picture's shape.
QRectF centred(const QSizeF& shape, const QSizeF& ground) {
  const QSizeF fitted = shape.scaled(ground, Qt::KeepAspectRatio);
  return {QPointF((ground.width() - fitted.width()) / 2, (ground.height() - fitted.height()) / 2),
          fitted};
}

QPixmap draw(const VectorPicture& picture, const QSize& pixels) {
  QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QSvgRenderer renderer(u":/corvalis/icons/"_s + picture.source);
  QRectF target = centred(picture.size, pixels);
  target.translate(0, picture.offset * target.height() / picture.size.height());
  QPainter painter(&image);
  painter.setOpacity(picture.opacity);
  renderer.render(&painter, target);
  if (picture.colour) {
    painter.setOpacity(1);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), *picture.colour);
  }
  painter.end();
  return QPixmap::fromImage(std::move(image));
}

QPixmap faded(const QPixmap& pixmap) {
  QPixmap result(pixmap.size());
  result.fill(Qt::transparent);
  QPainter painter(&result);
  painter.setOpacity(disabledOpacity);
  painter.drawPixmap(0, 0, pixmap);
  return result;
}

}  // namespace

QPixmap VectorPicture::render(const QSize& devicePixels) const {
  if (devicePixels.isEmpty()) return {};
  const QString key = cacheKey(*this, devicePixels);
  QPixmap pixmap;
  if (!QPixmapCache::find(key, &pixmap)) {
    pixmap = draw(*this, devicePixels);
    QPixmapCache::insert(key, pixmap);
  }
  return pixmap;
}

VectorIconEngine::VectorIconEngine(VectorPicture picture) : picture_(std::move(picture)) {}

void VectorIconEngine::paint(QPainter* painter, const QRect& rectangle, QIcon::Mode mode,
                             QIcon::State state) {
  const qreal ratio = painter->device()->devicePixelRatioF();
  QPixmap drawn = pixmap(rectangle.size() * ratio, mode, state);
  drawn.setDevicePixelRatio(ratio);
  painter->drawPixmap(rectangle, drawn);
}

QPixmap VectorIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) {
  const QPixmap drawn = picture_.render(size);
  return mode == QIcon::Disabled ? faded(drawn) : drawn;
}

QSize VectorIconEngine::actualSize(const QSize& size, QIcon::Mode, QIcon::State) {
  return size;
}

QIconEngine* VectorIconEngine::clone() const {
  return new VectorIconEngine(picture_);
}

}  // namespace ui
