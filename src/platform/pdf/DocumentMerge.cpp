#include "platform/pdf/DocumentMerge.h"

#include <QFileInfo>

#include "platform/base/Log.h"
#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/merge/Joiner.h"
#include "platform/pdf/internal/merge/ReadAhead.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

/// Joins what can be read and says what cannot.
std::vector<SkippedSource> joinAll(const std::vector<MergeSource>& sources, Joiner& joiner) {
  QStringList paths;
  for (const MergeSource& source : sources)
    paths += source.path;
  std::vector<SkippedSource> skipped;
  ReadAhead documents(paths);
  for (const MergeSource& source : sources) {
    if (joiner.hasFailed()) break;
    const auto document = documents.next();
    if (document) {
      joiner.add(**document, source.title, QFileInfo(source.path).completeBaseName());
      continue;
    }
    logLine(u"Left out while joining documents: "_s + document.error().localizedDescription);
    skipped.push_back({source.path, document.error()});
  }
  return skipped;
}

}  // namespace

Result<std::vector<SkippedSource>> mergeDocuments(const std::vector<MergeSource>& sources,
                                                  const QString& target) {
  if (sources.empty()) {
    return failure(QString::fromUtf16(errorDomain), PDFErrorNoPages,
                   u"There are no documents to join."_s);
  }
  Joiner joiner(target);
  std::vector<SkippedSource> skipped = joinAll(sources, joiner);
  if (skipped.size() == sources.size()) return tl::unexpected(skipped.front().reason);
  if (const MaybeError error = joiner.finish()) return tl::unexpected(*error);
  return skipped;
}

}  // namespace pdf
