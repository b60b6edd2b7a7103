// Joins the PDFs named on the command line; the benchmark's script times it.
//
// usage: pdf-merge-benchmark OUT.pdf A.pdf B.pdf...

#include <QCoreApplication>
#include <cstdio>

#include "platform/pdf/DocumentMerge.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.size() < 3) return 2;
  std::vector<pdf::MergeSource> sources;
  for (const QString& path : arguments.mid(2))
    sources.push_back({path, {}});
  const auto skipped = pdf::mergeDocuments(sources, arguments[1]);
  if (!skipped) std::fprintf(stderr, "%s\n", qPrintable(skipped.error().localizedDescription));
  return skipped && skipped->empty() ? 0 : 1;
}
