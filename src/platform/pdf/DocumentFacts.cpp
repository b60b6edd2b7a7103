#include "platform/pdf/DocumentFacts.h"

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/Information.h"
#include "platform/pdf/internal/PageGeometry.h"
#include "platform/pdf/internal/QpdfFile.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

bool isTagged(QPDFObjectHandle root) {
  QPDFObjectHandle marks = root.getKey("/MarkInfo");
  if (!marks.isDictionary() || !root.getKey("/StructTreeRoot").isDictionary()) return false;
  QPDFObjectHandle marked = marks.getKey("/Marked");
  return marked.isBool() && marked.getBoolValue();
}

bool hasOutline(QPDFObjectHandle root) {
  QPDFObjectHandle outlines = root.getKey("/Outlines");
  return outlines.isDictionary() && outlines.getKey("/First").isDictionary();
}

}  // namespace

Result<DocumentFacts> documentFacts(const QString& path) {
  const auto opened = openQpdf(path);
  if (!opened) return tl::unexpected(opened.error());
  QPDF& document = **opened;
  DocumentFacts facts;
  const MaybeError error =
      catchingQpdf(PDFErrorUnreadable, u"The document \"%1\" is damaged: "_s.arg(path), [&] {
        facts.pageSizes = shownSizes(document);
        facts.hasOutline = hasOutline(document.getRoot());
        facts.isTagged = isTagged(document.getRoot());
        facts.attributes = readInformation(document);
      });
  if (error) return tl::unexpected(*error);
  return facts;
}

}  // namespace pdf
