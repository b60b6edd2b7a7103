#include "Merging.h"

#include <gtest/gtest.h>

#include "Tools.h"

using namespace Qt::StringLiterals;

namespace tools {

Merged merge(const QStringList& paths, const QStringList& titles) {
  std::vector<pdf::MergeSource> sources;
  for (qsizetype index = 0; index < paths.size(); ++index)
    sources.push_back({paths[index], titles.value(index)});
  const QString path = fresh(u"merged.pdf"_s);
  const auto skipped = pdf::mergeDocuments(sources, path);
  EXPECT_TRUE(skipped) << qPrintable(skipped ? QString() : skipped.error().localizedDescription);
  if (!skipped) return {};
  EXPECT_EQ(complaints(path), QString());
  return {path, *skipped};
}

}  // namespace tools
