#include "platform/imaging/PixelRows.h"

#include <QPainter>

#include "platform/imaging/ImagingError.h"

namespace imaging {

using namespace Qt::StringLiterals;

QImage opaqueRows(const QImage& rows, QImage::Format format) {
  if (!rows.hasAlphaChannel()) return rows.convertToFormat(format);
  QImage canvas(rows.size(), QImage::Format_RGB32);
  if (canvas.isNull()) return canvas;
  canvas.fill(Qt::white);
  QImage unscaled = rows;
  unscaled.setDevicePixelRatio(1);
  QPainter painter(&canvas);
  painter.drawImage(0, 0, unscaled);
  painter.end();
  return canvas.convertToFormat(format);
}

MaybeError rowsError(const QImage& rows, QSize picture, int rowsDone) {
  const bool fits = !rows.isNull() && rows.width() == picture.width() &&
                    rows.height() <= picture.height() - rowsDone;
  if (fits) return {};
  return imagingError(ImagingError::NoPicture,
                      u"The page's picture came in pieces that do not fit."_s);
}

MaybeError missingRowsError(QSize picture, int rowsDone) {
  if (rowsDone == picture.height()) return {};
  return imagingError(
      ImagingError::NoPicture,
      u"The page's picture ends after %1 of %2 rows."_s.arg(rowsDone).arg(picture.height()));
}

Error noMemoryForRows() {
  return imagingError(ImagingError::NoPicture, u"There is not enough memory for the picture."_s);
}

}  // namespace imaging
