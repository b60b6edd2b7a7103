#include "delivery/PDFMultipageAssembler.h"

#include "platform/pdf/DocumentMerge.h"

MaybeError PDFMultipageAssembler::mergePDFURLs(const QList<QUrl>& files, const QUrl& target) {
  std::vector<pdf::MergeSource> sources;
  for (const QUrl& file : files)
    sources.push_back({file.toLocalFile(), QString()});
  const auto skipped = pdf::mergeDocuments(sources, target.toLocalFile());
  return skipped ? MaybeError() : skipped.error();
}
