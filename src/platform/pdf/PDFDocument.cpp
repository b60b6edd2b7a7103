#include "platform/pdf/PDFDocument.h"

#include <qpdf/QPDFPageDocumentHelper.hh>

#include "platform/pdf/internal/Contents.h"
#include "platform/pdf/internal/DescribedCopy.h"
#include "platform/pdf/internal/Information.h"
#include "platform/pdf/internal/PageGeometry.h"
#include "platform/pdf/internal/QpdfFile.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

Error argumentError(const QString& text) {
  return {QString::fromUtf16(errorDomain), PDFErrorArgument, text};
}

}  // namespace

PDFDocument::PDFDocument(std::shared_ptr<Contents> contents) : contents_(std::move(contents)) {}

PDFDocument::~PDFDocument() = default;

Result<std::shared_ptr<PDFDocument>> PDFDocument::open(const QString& path) {
  const FileIdentity file(path);
  auto opened = openQpdf(path);
  if (!opened) return tl::unexpected(opened.error());
  const auto contents = std::make_shared<Contents>(std::move(*opened));
  contents->unchangedFile = file;
  return std::make_shared<PDFDocument>(contents);
}

Result<std::shared_ptr<PDFDocument>> PDFDocument::initWithURL(const QUrl& url) {
  return open(url.toLocalFile());
}

std::shared_ptr<PDFDocument> PDFDocument::createEmpty() {
  auto contents = std::make_shared<Contents>(std::make_unique<QPDF>());
  contents->qpdf.setSuppressWarnings(true);
  contents->qpdf.emptyPDF();
  return std::make_shared<PDFDocument>(std::move(contents));
}

int PDFDocument::pageCount() const {
  return static_cast<int>(contents_->qpdf.getAllPages().size());
}

std::vector<QSizeF> PDFDocument::pageSizes() const {
  return shownSizes(contents_->qpdf);
}

MaybeError PDFDocument::insertPageFrom(const PDFDocument& document, int pageIndex, int at) {
  if (pageIndex < 0 || pageIndex >= document.pageCount()) {
    return argumentError(u"The document has no page %1."_s.arg(pageIndex + 1));
  }
  if (at < 0 || at > pageCount())
    return argumentError(u"There is no place %1 for a page."_s.arg(at));
  contents_->unchangedFile = {};
  return catchingQpdf(PDFErrorUnreadable, u"The page cannot be taken over: "_s, [&] {
    const QPDFObjectHandle page =
        document.contents_->qpdf.getAllPages().at(static_cast<size_t>(pageIndex));
    QPDFPageDocumentHelper pages(contents_->qpdf);
    if (at == pageCount()) {
      pages.addPage(page, false);
    } else {
      pages.addPageAt(page, true, contents_->qpdf.getAllPages().at(static_cast<size_t>(at)));
    }
    if (document.contents_ != contents_) contents_->origins.push_back(document.contents_);
  });
}

void PDFDocument::setDocumentAttributes(const DocumentAttributes& attributes) {
  contents_->newAttributes = attributes;
}

DocumentAttributes PDFDocument::documentAttributes() const {
  contents_->putAttributesIn();
  return readInformation(contents_->qpdf);
}

MaybeError PDFDocument::writeToFile(const QString& path) const {
  if (pageCount() == 0) {
    return Error{QString::fromUtf16(errorDomain), PDFErrorNoPages,
                 u"The document \"%1\" has no pages and is not written."_s.arg(path)};
  }
  if (contents_->newAttributes && contents_->unchangedFile.isThere()) {
    const auto copy =
        makeDescribedCopy(contents_->unchangedFile.path(), path, *contents_->newAttributes);
    if (!copy) return copy.error();
    if (*copy == DescribedCopy::Made) return std::nullopt;
  }
  contents_->putAttributesIn();
  return writeQpdf(contents_->qpdf, path);
}

MaybeError PDFDocument::writeToURL(const QUrl& url) const {
  return writeToFile(url.toLocalFile());
}

}  // namespace pdf
