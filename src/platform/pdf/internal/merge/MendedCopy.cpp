#include "platform/pdf/internal/merge/MendedCopy.h"

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/QpdfFile.h"
#include "platform/pdf/internal/merge/Fields.h"

using namespace Qt::StringLiterals;

namespace pdf {

Result<std::unique_ptr<QTemporaryFile>> mendedCopy(const QString& path) {
  const auto document = openQpdf(path);
  if (!document) return tl::unexpected(document.error());
  if ((*document)->getAllPages().empty()) {
    return failure(QString::fromUtf16(errorDomain), PDFErrorNoPages,
                   u"The document \"%1\" has no pages."_s.arg(path));
  }
  auto copy = std::make_unique<QTemporaryFile>();
  MaybeError error;
  if (copy->open()) {
    error = catchingQpdf(PDFErrorUnreadable, u"The document \"%1\" is damaged: "_s.arg(path), [&] {
      drawFields(**document);
      writePlainly(**document, *copy);
    });
  }
  // A full disk is no fault of the document's.
  if (!copy->isOpen() || !copy->flush() || copy->error() != QFileDevice::NoError) {
    return failure(QString::fromUtf16(errorDomain), PDFErrorWrite,
                   u"The document \"%1\" cannot be mended: %2"_s.arg(path, copy->errorString()));
  }
  if (error) return tl::unexpected(*error);
  return copy;
}

}  // namespace pdf
