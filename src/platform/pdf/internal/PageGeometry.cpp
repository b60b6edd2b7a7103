#include "platform/pdf/internal/PageGeometry.h"

#include <qpdf/QPDFPageDocumentHelper.hh>

namespace pdf {

QSizeF shownSize(QPDFPageObjectHelper page) {
  QPDFObjectHandle box = page.getCropBox();
  if (!box.isRectangle()) return {};
  const QPDFObjectHandle::Rectangle area = box.getArrayAsRectangle();
  QSizeF size(area.urx - area.llx, area.ury - area.lly);
  QPDFObjectHandle rotation = page.getAttribute("/Rotate", false);
  if (rotation.isInteger() && rotation.getIntValue() % 180 != 0) size.transpose();
  QPDFObjectHandle unit = page.getObjectHandle().getKey("/UserUnit");
  return unit.isNumber() && unit.getNumericValue() > 0 ? size * unit.getNumericValue() : size;
}

std::vector<QSizeF> shownSizes(QPDF& document) {
  std::vector<QSizeF> sizes;
  for (const QPDFPageObjectHelper& page : QPDFPageDocumentHelper(document).getAllPages()) {
    sizes.push_back(shownSize(page));
  }
  return sizes;
}

}  // namespace pdf
