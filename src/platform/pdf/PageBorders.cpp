#include <QTransform>
#include <vector>

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/PageCanvas.h"
#include "platform/pdf/internal/IncrementalUpdate.h"
#include "platform/pdf/internal/PageGeometry.h"
#include "platform/pdf/internal/SequentialFile.h"
#include "platform/pdf/internal/TextSetter.h"
#include "platform/pdf/internal/Transplant.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

struct Overlays {
  QByteArray pdf;
  std::vector<bool> drawn;
};

Overlays drawOverlays(const SourceFile& document, const DrawPageBorder& draw) {
  CanvasWriter canvas;
  Overlays overlays;
  for (const SourcePage& page : document.pages()) {
    const QSizeF size = pageGeometry(document, page).shownSize();
    canvas.beginPage(size);
    draw(canvas, static_cast<int>(overlays.drawn.size()), size);
    overlays.drawn.push_back(canvas.pageIsDrawn());
  }
  overlays.pdf = canvas.finish();
  return overlays;
}

/// Lays pages drawn elsewhere over the pages of a document. The borders count as pagination
/// artifacts (ISO 32000-1, 14.8.2.2): readers of tagged content pass over them.
class Overlay {
 public:
  Overlay(const SourceFile& document, const SourceFile& borders)
      : document_(document), borders_(borders), update_(document), forms_(borders, update_) {
    save_ = update_.reserve();
    update_.writeStream(save_, "<<>>", "q\n");
  }

  void lay(const SourcePage& page, const SourcePage& border);

  MaybeError write(const QString& output) {
    forms_.finish();
    return update_.write(output);
  }

 private:
  int addForm(const SourcePage& border, const QRectF& box);
  std::string resources(const SourcePage& page, int form, std::string& name) const;
  std::string contents(const Value& own, int drawing) const;

  const SourceFile& document_;
  const SourceFile& borders_;
  IncrementalUpdate update_;
  Transplant forms_;
  int save_ = 0;
};

int Overlay::addForm(const SourcePage& border, const QRectF& box) {
  const int contents = borders_.pageEntry(border, "/Contents").reference;
  std::string entries = "<<";
  forms_.appendEntries(entries, borders_.object(contents), {"/Length"});
  entries += "/Type/XObject/Subtype/Form/BBox[0 0 " + number(box.width()).toStdString() + ' ' +
             number(box.height()).toStdString() + "]/Resources ";
  entries += forms_.copy(borders_.pageEntry(border, "/Resources"));
  const int form = update_.reserve();
  update_.writeStream(form, entries + ">>", borders_.data(contents).value_or(std::string_view()));
  return form;
}

/// The page's own, which other pages may share, with the form under a name that is free.
std::string Overlay::resources(const SourcePage& page, int form, std::string& name) const {
  const Value& own = document_.resolved(document_.pageEntry(page, "/Resources"));
  const Value& forms = document_.resolved(own["/XObject"]);
  for (int number = 1; name.empty() || !forms[name].isNull(); ++number)
    name = "/Border" + std::to_string(number);
  ValueText spelling;
  std::string text = "<<";
  if (own.isDictionary()) spelling.appendEntries(text, own, {"/XObject"});
  text += "/XObject<<";
  if (forms.isDictionary()) spelling.appendEntries(text, forms, {});
  return text + name + ' ' + referenceText(form) + ">>>>";
}

std::string Overlay::contents(const Value& own, int drawing) const {
  ValueText spelling;
  std::string text = '[' + referenceText(save_) + ' ';
  const Value& array = document_.resolved(own);
  if (!array.isArray() && !own.isNull()) spelling.append(text, own);
  if (array.isArray()) {
    for (const Value& item : array.items())
      spelling.append(text, item);
  }
  return text + ' ' + referenceText(drawing) + ']';
}

/// The page's own content may leave its graphics state changed, so it is put between q and Q.
void Overlay::lay(const SourcePage& page, const SourcePage& border) {
  const QRectF box = pageGeometry(borders_, border).box;
  const QTransform placed =
      QTransform(1, 0, 0, -1, 0, box.height()) * pageGeometry(document_, page).pageFromShown();
  const Value& own = document_.object(page.number);
  std::string name;
  std::string text = "<<";
  ValueText().appendEntries(text, own, {"/Contents", "/Resources"});
  text += "/Resources" + resources(page, addForm(border, box), name);
  const int drawing = update_.reserve();
  update_.writeStream(drawing, "<<>>",
                      "\nQ\n/Artifact <</Type /Pagination>> BDC\nq\n" + matrixText(placed) +
                          "cm\n" + name + " Do\nQ\nEMC\n");
  update_.writeObject(page.number, text + "/Contents" + contents(own["/Contents"], drawing) + ">>");
}

}  // namespace

MaybeError drawPageBorders(const QString& input, const QString& output,
                           const DrawPageBorder& draw) {
  const auto document = openForUpdate(input);
  if (!document) return document.error();
  const Overlays overlays = drawOverlays(**document, draw);
  try {
    const SourceFile borders(overlays.pdf);
    Overlay overlay(**document, borders);
    for (size_t index = 0; index < overlays.drawn.size(); ++index) {
      if (overlays.drawn[index])
        overlay.lay((*document)->pages()[index], borders.pages().at(index));
    }
    return overlay.write(output);
  } catch (const std::exception& exception) {
    return Error{QString::fromUtf16(errorDomain), PDFErrorUnreadable,
                 u"The page borders cannot be placed: "_s + QString::fromUtf8(exception.what())};
  }
}

}  // namespace pdf
