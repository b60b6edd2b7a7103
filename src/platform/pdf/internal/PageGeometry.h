#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <QSizeF>
#include <QTransform>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <vector>

namespace pdf {

/// The size of a page as a reader shows it, in points.
QSizeF shownSize(QPDFPageObjectHelper page);

/// From the page as shown (points, origin at the upper left corner, y downwards) to its user space.
QTransform pageFromShown(QPDFPageObjectHelper page);

std::vector<QSizeF> shownSizes(QPDF& document);

}  // namespace pdf
