#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <QRectF>
#include <QSizeF>
#include <QTransform>
#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

#include "platform/pdf/internal/merge/SourceFile.h"

namespace pdf {

/// What decides how a reader shows a page.
struct PageGeometry {
  QRectF box;            ///< of user space: `top` is its lower edge
  int quarterTurns = 0;  ///< clockwise, 0 to 3
  double userUnit = 1;   ///< points

  /// In points.
  QSizeF shownSize() const;

  /// From the page as shown (points, origin at the upper left corner, y downwards) to its user
  /// space.
  QTransform pageFromShown() const;
};

PageGeometry pageGeometry(const SourceFile& document, const SourcePage& page);

std::vector<QSizeF> shownSizes(QPDF& document);

/// The six numbers of a matrix as a PDF file spells them, with a space after each.
std::string matrixText(const QTransform& matrix);

}  // namespace pdf
