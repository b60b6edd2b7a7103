#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>

#include "platform/pdf/PicturePages.h"

namespace pdf {

/// Where things of the document lie on one page of its picture. The page's user space has its
/// origin at the lower left corner; its unit is `userUnit` points.
class PictureSheet {
 public:
  PictureSheet(const PicturePage& page, QSizeF documentSize, int pictureRows);

  double userUnit() const { return userUnit_; }
  QSizeF box() const { return page_.paper / userUnit_; }

  /// Height of a row of the picture.
  double rowHeight() const { return page_.target.height() / page_.rows / userUnit_; }

  /// Where rows of the picture lie, whether or not the page shows them.
  QRectF rowsOnPage(int firstRow, int rows) const;

  /// The page's part of the picture.
  QRectF target() const { return rowsOnPage(page_.firstRow, page_.rows); }

  bool showsWholly(int firstRow, int rows) const;
  bool showsPartOf(int firstRow, int rows) const;

  /// Whether a height of the document falls on this page.
  bool shows(double documentY) const;

  /// A rectangle of the document in user space: x, lower y, width, height.
  QRectF place(const QRectF& documentRect) const;
  double placeY(double documentY) const;

 private:
  PicturePage page_;
  double rowsPerPoint_;
  double pointsAcross_;
  double userUnit_;
};

}  // namespace pdf
