#include "platform/pdf/internal/PageGeometry.h"

#include <qpdf/QPDFPageDocumentHelper.hh>

namespace pdf {
namespace {

/// A page without a usable box is US Letter, as readers have it.
QPDFObjectHandle::Rectangle shownBox(QPDFPageObjectHelper page) {
  const QPDFObjectHandle::Rectangle usualBox(0, 0, 612, 792);
  QPDFObjectHandle box = page.getCropBox();
  if (!box.isRectangle()) return usualBox;
  const QPDFObjectHandle::Rectangle area = box.getArrayAsRectangle();
  return area.urx > area.llx && area.ury > area.lly ? area : usualBox;
}

/// Clockwise quarter turns, 0 to 3.
int quarterTurns(QPDFPageObjectHelper page) {
  QPDFObjectHandle rotation = page.getAttribute("/Rotate", false);
  if (!rotation.isInteger()) return 0;
  return static_cast<int>(((rotation.getIntValue() / 90) % 4 + 4) % 4);
}

double userUnit(QPDFPageObjectHelper page) {
  QPDFObjectHandle unit = page.getObjectHandle().getKey("/UserUnit");
  return unit.isNumber() && unit.getNumericValue() > 0 ? unit.getNumericValue() : 1;
}

}  // namespace

QSizeF shownSize(QPDFPageObjectHelper page) {
  const QPDFObjectHandle::Rectangle box = shownBox(page);
  const QSizeF size = QSizeF(box.urx - box.llx, box.ury - box.lly) * userUnit(page);
  return quarterTurns(page) % 2 == 0 ? size : size.transposed();
}

QTransform pageFromShown(QPDFPageObjectHelper page) {
  const QPDFObjectHandle::Rectangle box = shownBox(page);
  const double point = 1 / userUnit(page);
  switch (quarterTurns(page)) {
    case 1:
      return {0, point, point, 0, box.llx, box.lly};
    case 2:
      return {-point, 0, 0, point, box.urx, box.lly};
    case 3:
      return {0, -point, -point, 0, box.urx, box.ury};
    default:
      return {point, 0, 0, -point, box.llx, box.ury};
  }
}

std::vector<QSizeF> shownSizes(QPDF& document) {
  std::vector<QSizeF> sizes;
  for (const QPDFPageObjectHelper& page : QPDFPageDocumentHelper(document).getAllPages()) {
    sizes.push_back(shownSize(page));
  }
  return sizes;
}

}  // namespace pdf
