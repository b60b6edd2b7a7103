#include "platform/pdf/internal/PictureSheet.h"

#include <algorithm>

namespace pdf {

PictureSheet::PictureSheet(const PicturePage& page, QSizeF documentSize, int pictureRows)
    : page_(page),
      rowsPerPoint_(pictureRows / documentSize.height()),
      pointsAcross_(documentSize.width()),
      userUnit_(
          std::max(1.0, std::max(page.paper.width(), page.paper.height()) / longestPageSide)) {}

QRectF PictureSheet::rowsOnPage(int firstRow, int rows) const {
  const double top = page_.target.y() / userUnit_ + (firstRow - page_.firstRow) * rowHeight();
  const double height = rows * rowHeight();
  return {page_.target.x() / userUnit_, box().height() - top - height,
          page_.target.width() / userUnit_, height};
}

bool PictureSheet::showsWholly(int firstRow, int rows) const {
  return firstRow >= page_.firstRow && firstRow + rows <= page_.firstRow + page_.rows;
}

bool PictureSheet::showsPartOf(int firstRow, int rows) const {
  return firstRow < page_.firstRow + page_.rows && firstRow + rows > page_.firstRow;
}

bool PictureSheet::shows(double documentY) const {
  const double row = documentY * rowsPerPoint_;
  return row >= page_.firstRow && row < page_.firstRow + page_.rows;
}

double PictureSheet::placeY(double documentY) const {
  const double row = documentY * rowsPerPoint_ - page_.firstRow;
  return box().height() - page_.target.y() / userUnit_ - row * rowHeight();
}

QRectF PictureSheet::place(const QRectF& documentRect) const {
  const double across = page_.target.width() / userUnit_ / pointsAcross_;
  const double low = placeY(documentRect.bottom());
  return {page_.target.x() / userUnit_ + documentRect.x() * across, low,
          documentRect.width() * across, placeY(documentRect.top()) - low};
}

}  // namespace pdf
