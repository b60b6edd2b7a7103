#include "platform/pdf/internal/merge/Fields.h"

#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFAnnotationObjectHelper.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

namespace pdf {
namespace {

constexpr int hiddenFields = an_invisible | an_hidden | an_no_view;

class PageFields {
 public:
  PageFields(QPDF& document, QPDFPageObjectHelper page) : document_(document), page_(page) {}

  void draw() {
    QPDFObjectHandle annotations = page_.getObjectHandle().getKey("/Annots");
    if (!annotations.isArray()) return;
    QPDFObjectHandle others = QPDFObjectHandle::newArray();
    for (QPDFObjectHandle& annotation : annotations.getArrayAsVector()) {
      if (!isField(annotation)) {
        others.appendItem(annotation);
        continue;
      }
      drawField(QPDFAnnotationObjectHelper(annotation));
      // The tags can refer to it.
      if (annotation.isIndirect()) gone_.push_back(annotation.getObjGen());
    }
    page_.getObjectHandle().replaceKey("/Annots", others);
    for (const QPDFObjGen& field : gone_)
      document_.replaceObject(field, QPDFObjectHandle::newNull());
    if (content_.empty()) return;
    page_.addPageContents(QPDFObjectHandle::newStream(&document_, "q\n"), true);
    page_.addPageContents(QPDFObjectHandle::newStream(&document_, "\nQ\n" + content_), false);
  }

 private:
  static bool isField(QPDFObjectHandle annotation) {
    if (!annotation.isDictionary()) return false;
    QPDFObjectHandle kind = annotation.getKey("/Subtype");
    return kind.isName() && kind.getName() == "/Widget";
  }

  void drawField(QPDFAnnotationObjectHelper field) {
    QPDFObjectHandle look = field.getAppearanceStream("/N");
    if (!look.isStream() || (field.getFlags() & hiddenFields) != 0) return;
    QPDFObjectHandle resources = page_.getAttribute("/Resources", true);
    if (!resources.isDictionary()) return;
    QPDFObjectHandle forms = resources.getKey("/XObject");
    forms = resources.replaceKeyAndGetNew(
        "/XObject", forms.isDictionary() ? forms.shallowCopy() : QPDFObjectHandle::newDictionary());
    int suffix = 1;
    const std::string name = resources.getUniqueResourceName("/Field", suffix);
    const std::string content = field.getPageContentForAppearance(name, 0);
    if (content.empty()) return;
    forms.replaceKey(name, look);
    content_ += content;
  }

  QPDF& document_;
  QPDFPageObjectHelper page_;
  std::string content_;
  std::vector<QPDFObjGen> gone_;
};

}  // namespace

void drawFields(QPDF& document) {
  QPDFAcroFormDocumentHelper form(document);
  if (!form.hasAcroForm()) return;
  form.generateAppearancesIfNeeded();
  for (const QPDFPageObjectHelper& page : QPDFPageDocumentHelper(document).getAllPages()) {
    PageFields(document, page).draw();
  }
  document.getRoot().removeKey("/AcroForm");
}

}  // namespace pdf
