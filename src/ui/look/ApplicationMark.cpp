#include "ui/look/ApplicationMark.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

/// Outside of every namespace, as the macro needs it.
static void keepResources() {
  Q_INIT_RESOURCE(icons);
}

namespace ui {

QByteArray applicationMarkAsSvg() {
  keepResources();
  QFile source(u":/corvalis/icons/app/com.maplebrook.corvalis.svg"_s);
  return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

QByteArray applicationMarkAsPng(int side) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  QSvgRenderer(applicationMarkAsSvg()).render(&painter);
  painter.end();
  QByteArray file;
  QBuffer buffer(&file);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return file;
}

}  // namespace ui
