#include "app/CaptureReport.h"

#include <unistd.h>

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// Short enough for one line of a terminal.
constexpr qsizetype longestProgressLine = 78;

QJsonValue orNull(const std::optional<QString>& text) {
  return text ? QJsonValue(*text) : QJsonValue();
}

void writeLine(std::FILE* stream, const QByteArray& line) {
  std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stream);
  std::fputc('\n', stream);
  std::fflush(stream);
}

}  // namespace

CaptureReport::CaptureReport(const CaptureOptions& options, qsizetype sources)
    : options_(options),
      showsProgress_(options.verbosity == Verbosity::Normal && ::isatty(STDERR_FILENO) == 1),
      results_(static_cast<std::size_t>(sources)) {}

void CaptureReport::progress(qsizetype index, const QString& step) {
  if (!showsProgress_) return;
  QString line = u"[%1/%2] %3 %4"_s.arg(index + 1)
                     .arg(results_.size())
                     .arg(step, options_.sources.value(index));
  line.truncate(longestProgressLine);
  std::fprintf(stderr, "\r\033[K%s", qPrintable(line));
}

void CaptureReport::clearProgress() {
  if (showsProgress_) std::fputs("\r\033[K", stderr);
}

void CaptureReport::finished(qsizetype index, CaptureResult result) {
  results_[static_cast<std::size_t>(index)] = std::move(result);
  clearProgress();
  while (next_ < results_.size() && results_[next_])
    tell(*results_[next_++]);
}

void CaptureReport::tell(const CaptureResult& result) {
  if (options_.report == ReportForm::JsonLines) tellJson(result);
  if (result.error) {
    anyFailed_ = true;
    const QString line = u"corvalis: %1: %2"_s.arg(result.source, *result.error);
    return writeLine(stderr, line.toLocal8Bit());
  }
  if (result.file) tellFile(*result.file);
}

void CaptureReport::tellFile(const QString& file) const {
  const bool plain = options_.report == ReportForm::Text && options_.verbosity != Verbosity::Quiet;
  if (plain) writeLine(stdout, file.toLocal8Bit());
}

void CaptureReport::joined(const std::optional<QString>& file, const MaybeError& error) {
  if (error) {
    anyFailed_ = true;
    return writeLine(stderr, u"corvalis: %1"_s.arg(error->localizedDescription).toLocal8Bit());
  }
  if (file) tellFile(*file);
}

void CaptureReport::tellJson(const CaptureResult& result) const {
  QJsonObject line{
      {u"source"_s, result.source},
      {u"address"_s, result.address},
      {u"title"_s, orNull(result.title)},
      {u"file"_s, orNull(result.file)},
      {u"format"_s, options_.format},
      {u"width"_s, result.size.width()},
      {u"height"_s, result.size.height()},
      {u"pages"_s, result.pages},
      {u"bytes"_s, result.file ? QFileInfo(*result.file).size() : 0},
      {u"seconds"_s, std::round(result.seconds * 1000) / 1000},
      {u"error"_s, orNull(result.error)},
  };
  writeLine(stdout, QJsonDocument(line).toJson(QJsonDocument::Compact));
}
