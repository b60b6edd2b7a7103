#include <QTransform>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <vector>

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/PageCanvas.h"
#include "platform/pdf/internal/PageGeometry.h"
#include "platform/pdf/internal/QpdfFile.h"
#include "platform/pdf/internal/TextSetter.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

struct Overlays {
  QByteArray pdf;
  std::vector<bool> drawn;
};

Overlays drawOverlays(const std::vector<QSizeF>& sizes, const DrawPageBorder& draw) {
  CanvasWriter canvas;
  Overlays overlays;
  for (const QSizeF& size : sizes) {
    canvas.beginPage(size);
    draw(canvas, static_cast<int>(overlays.drawn.size()), size);
    overlays.drawn.push_back(canvas.pageIsDrawn());
  }
  overlays.pdf = canvas.finish();
  return overlays;
}

std::string matrixText(const QTransform& matrix) {
  const QString numbers = u"%1 %2 %3 %4 %5 %6"_s;
  const auto number = [](double value) { return QString::number(value, 'f', 6); };
  return numbers
      .arg(number(matrix.m11()), number(matrix.m12()), number(matrix.m21()), number(matrix.m22()),
           number(matrix.dx()), number(matrix.dy()))
      .toStdString();
}

/// A name for the form in the page's own resources, which may be shared with other pages until now.
std::string addForm(QPDFPageObjectHelper page, QPDFObjectHandle form) {
  QPDFObjectHandle resources = page.getAttribute("/Resources", true);
  if (!resources.isDictionary()) {
    resources =
        page.getObjectHandle().replaceKeyAndGetNew("/Resources", QPDFObjectHandle::newDictionary());
  }
  QPDFObjectHandle forms = resources.getKey("/XObject");
  forms = resources.replaceKeyAndGetNew(
      "/XObject", forms.isDictionary() ? forms.shallowCopy() : QPDFObjectHandle::newDictionary());
  int suffix = 1;
  const std::string name = resources.getUniqueResourceName("/Border", suffix);
  forms.replaceKey(name, form);
  return name;
}

/// The page's own content may leave its graphics state changed, so it is put between q and Q. The
/// border counts as a pagination artifact (ISO 32000-1, 14.8.2.2): readers of tagged content pass
/// over it.
void overlay(QPDF& document, QPDFPageObjectHelper page, QPDFPageObjectHelper border,
             QPDFObjectHandle save) {
  const double height = border.getMediaBox().getArrayAsRectangle().ury;
  const QTransform placed = QTransform(1, 0, 0, -1, 0, height) * pageFromShown(page);
  const QPDFObjectHandle form = document.copyForeignObject(border.getFormXObjectForPage());
  const std::string name = addForm(page, form);
  const std::string content = "\nQ\n/Artifact <</Type /Pagination>> BDC\nq\n" + matrixText(placed) +
                              " cm\n" + name + " Do\nQ\nEMC\n";
  page.addPageContents(save, true);
  page.addPageContents(QPDFObjectHandle::newStream(&document, content), false);
}

void overlayAll(QPDF& document, QPDF& borders, const std::vector<bool>& drawn) {
  const auto pages = QPDFPageDocumentHelper(document).getAllPages();
  const auto overlays = QPDFPageDocumentHelper(borders).getAllPages();
  const QPDFObjectHandle save = QPDFObjectHandle::newStream(&document, "q\n");
  for (size_t index = 0; index < pages.size(); ++index) {
    if (drawn.at(index)) overlay(document, pages[index], overlays.at(index), save);
  }
}

}  // namespace

MaybeError drawPageBorders(const QString& input, const QString& output,
                           const DrawPageBorder& draw) {
  const auto opened = openQpdf(input);
  if (!opened) return opened.error();
  QPDF& document = **opened;
  const std::vector<QSizeF> sizes = shownSizes(document);
  if (sizes.empty()) {
    return Error{QString::fromUtf16(errorDomain), PDFErrorNoPages,
                 u"The document \"%1\" has no pages."_s.arg(input)};
  }
  const Overlays overlays = drawOverlays(sizes, draw);
  QPDF borders;
  const MaybeError error =
      catchingQpdf(PDFErrorUnreadable, u"The page borders cannot be placed: "_s, [&] {
        borders.processMemoryFile("borders", overlays.pdf.constData(),
                                  static_cast<size_t>(overlays.pdf.size()));
        overlayAll(document, borders, overlays.drawn);
      });
  return error ? error : writeQpdf(document, output);
}

}  // namespace pdf
