#include "platform/pdf/internal/PageGeometry.h"

#include <algorithm>
#include <array>
#include <optional>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include "platform/pdf/internal/SequentialFile.h"

namespace pdf {
namespace {

/// A page without a usable box is US Letter, as readers have it.
constexpr QRectF usualBox(0, 0, 612, 792);

QRectF usableBox(const QRectF& box) {
  return box.width() > 0 && box.height() > 0 ? box : usualBox;
}

int turnsOf(long long degrees) {
  return static_cast<int>(((degrees / 90) % 4 + 4) % 4);
}

QRectF shownBox(QPDFPageObjectHelper page) {
  QPDFObjectHandle box = page.getCropBox();
  if (!box.isRectangle()) return usualBox;
  const QPDFObjectHandle::Rectangle area = box.getArrayAsRectangle();
  return usableBox({QPointF(area.llx, area.lly), QPointF(area.urx, area.ury)});
}

PageGeometry pageGeometry(QPDFPageObjectHelper page) {
  QPDFObjectHandle rotation = page.getAttribute("/Rotate", false);
  QPDFObjectHandle unit = page.getObjectHandle().getKey("/UserUnit");
  const bool hasUnit = unit.isNumber() && unit.getNumericValue() > 0;
  return {shownBox(page), rotation.isInteger() ? turnsOf(rotation.getIntValue()) : 0,
          hasUnit ? unit.getNumericValue() : 1};
}

const Value& entry(const SourceFile& document, const SourcePage& page, std::string_view key) {
  return document.resolved(document.pageEntry(page, key));
}

std::optional<QRectF> rectangle(const SourceFile& document, const Value& value) {
  if (!value.isArray() || value.count != 4) return std::nullopt;
  std::array<double, 4> edges;
  for (size_t index = 0; index < edges.size(); ++index) {
    const auto edge = document.resolved(value.items()[index]).number();
    if (!edge) return std::nullopt;
    edges[index] = *edge;
  }
  return QRectF(QPointF(edges[0], edges[1]), QPointF(edges[2], edges[3])).normalized();
}

}  // namespace

QSizeF PageGeometry::shownSize() const {
  const QSizeF size = box.size() * userUnit;
  return quarterTurns % 2 == 0 ? size : size.transposed();
}

QTransform PageGeometry::pageFromShown() const {
  const double point = 1 / userUnit;
  switch (quarterTurns) {
    case 1:
      return {0, point, point, 0, box.left(), box.top()};
    case 2:
      return {-point, 0, 0, point, box.right(), box.top()};
    case 3:
      return {0, -point, -point, 0, box.right(), box.bottom()};
    default:
      return {point, 0, 0, -point, box.left(), box.bottom()};
  }
}

PageGeometry pageGeometry(const SourceFile& document, const SourcePage& page) {
  const auto media = rectangle(document, entry(document, page, "/MediaBox"));
  const auto crop = rectangle(document, entry(document, page, "/CropBox"));
  const auto turns = entry(document, page, "/Rotate").integer();
  const auto unit = entry(document, page, "/UserUnit").number();
  return {usableBox(crop.value_or(media.value_or(usualBox))), turns ? turnsOf(*turns) : 0,
          unit && *unit > 0 ? *unit : 1};
}

std::vector<QSizeF> shownSizes(QPDF& document) {
  std::vector<QSizeF> sizes;
  for (const QPDFPageObjectHelper& page : QPDFPageDocumentHelper(document).getAllPages()) {
    sizes.push_back(pageGeometry(page).shownSize());
  }
  return sizes;
}

std::string matrixText(const QTransform& matrix) {
  std::string text;
  for (const double value :
       {matrix.m11(), matrix.m12(), matrix.m21(), matrix.m22(), matrix.dx(), matrix.dy()})
    text += number(value, 6).toStdString() + ' ';
  return text;
}

}  // namespace pdf
