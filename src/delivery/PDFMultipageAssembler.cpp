#include "delivery/PDFMultipageAssembler.h"

#include "platform/pdf/DocumentMerge.h"

MaybeError PDFMultipageAssembler::mergePDFURLs(const QList<QUrl>& files, const QUrl& target) {
  std::vector<pdf::MergeSource> sources;
  for (const QUrl& file : files)
    sources.push_back({file.toLocalFile(), QString()});
  const auto merged = pdf::mergeDocuments(sources);
  if (!merged) return merged.error();
  return merged->document->writeToURL(target);
}
