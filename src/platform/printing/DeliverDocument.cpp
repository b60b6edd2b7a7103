#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <array>

#include "platform/pdf/PDFDocument.h"
#include "platform/printing/PrintService.h"

namespace printing {

using namespace Qt::StringLiterals;

namespace {

Error copyError(const QString& path, const QString& reason) {
  return makeError(ErrorFile, u"“%1” cannot be written: %2"_s.arg(path, reason));
}

MaybeError copyDocument(const QString& from, const QString& to) {
  QFile source(from);
  if (!source.open(QIODevice::ReadOnly))
    return makeError(ErrorFile, u"“%1” cannot be read: %2"_s.arg(from, source.errorString()));
  QSaveFile target(to);
  if (!target.open(QIODevice::WriteOnly)) return copyError(to, target.errorString());
  std::array<char, 65536> buffer;
  qint64 count = 0;
  while ((count = source.read(buffer.data(), buffer.size())) > 0)
    if (target.write(buffer.data(), count) != count) return copyError(to, target.errorString());
  if (count < 0)
    return makeError(ErrorFile, u"“%1” cannot be read: %2"_s.arg(from, source.errorString()));
  if (!target.commit()) return copyError(to, target.errorString());
  return std::nullopt;
}

/// The pages of the ranges, in the document's order.
MaybeError writePages(const QString& from, const QList<PageRange>& ranges, const QString& to) {
  const auto source = pdf::PDFDocument::open(from);
  if (!source) return source.error();
  const auto chosen = pdf::PDFDocument::createEmpty();
  for (int page = 1; page <= (*source)->pageCount(); ++page) {
    const bool wanted = std::any_of(ranges.begin(), ranges.end(), [page](const PageRange& range) {
      return range.first <= page && page <= range.last;
    });
    if (!wanted) continue;
    if (auto error = chosen->insertPageFrom(**source, page - 1, chosen->pageCount())) return error;
  }
  return chosen->writeToFile(to);
}

}  // namespace

Error makeError(ErrorCode code, const QString& description) {
  return Error{QString::fromLatin1(kErrorDomain), code, description};
}

Result<int> deliverDocument(PrintService& service, const QString& path,
                            const PrintSettings& settings) {
  if (!settings.outputFile) return service.submitDocument(path, settings);
  const MaybeError error = settings.pageRanges.isEmpty()
                               ? copyDocument(path, *settings.outputFile)
                               : writePages(path, settings.pageRanges, *settings.outputFile);
  if (error) return tl::unexpected(*error);
  return 0;
}

}  // namespace printing
