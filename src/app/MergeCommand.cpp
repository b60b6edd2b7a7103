#include "app/MergeCommand.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <cstdio>

#include "platform/pdf/DocumentMerge.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int failureStatus = 1;
constexpr int usageStatus = 2;

constexpr char help[] =
    "Usage: corvalis merge -o OUT.pdf A.pdf B.pdf...\n\n"
    "Joins PDF files in the order given. Each keeps its outline, under a heading of its own, and "
    "its\n"
    "links. A file that cannot be read is named on standard error and left out.\n\n"
    "Exit status: 0 all files joined, 1 some left out or nothing written, 2 wrong usage.\n";

void complain(const QString& text) {
  std::fprintf(stderr, "corvalis: %s\n", qPrintable(text));
}

int usageError(const QString& problem) {
  complain(problem);
  std::fprintf(stderr, "\n%s", help);
  return usageStatus;
}

int merge(const QStringList& files, const QString& output) {
  std::vector<pdf::MergeSource> sources;
  for (const QString& file : files)
    sources.push_back({file, QString()});
  const auto skipped = pdf::mergeDocuments(sources, output);
  if (!skipped) {
    complain(skipped.error().localizedDescription);
    return failureStatus;
  }
  for (const auto& source : *skipped)
    complain(source.path + u": "_s + source.reason.localizedDescription);
  return skipped->empty() ? 0 : failureStatus;
}

}  // namespace

int runMergeCommand(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.addOption({{u"o"_s, u"output"_s}, u"The joined file."_s, u"OUT.pdf"_s});
  parser.addOption({{u"h"_s, u"help"_s}, u"This text."_s});
  if (!parser.parse(QStringList{u"corvalis merge"_s} + arguments)) {
    return usageError(parser.errorText());
  }
  if (parser.isSet(u"help"_s)) {
    std::fputs(help, stdout);
    return 0;
  }
  if (!parser.isSet(u"output"_s)) return usageError(u"Name the joined file with -o."_s);
  if (parser.positionalArguments().isEmpty()) {
    return usageError(u"Name at least one file to join."_s);
  }
  return merge(parser.positionalArguments(),
               QFileInfo(parser.value(u"output"_s)).absoluteFilePath());
}
