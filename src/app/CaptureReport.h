#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "app/CaptureOptions.h"

/// What became of one source.
struct CaptureResult {
  QString source;
  QString address;
  std::optional<QString> title;
  std::optional<QString> file;
  /// Points for a PDF, device pixels for a picture.
  QSizeF size{0, 0};
  int pages = 0;
  double seconds = 0;
  std::optional<QString> error;
};

/// Tells the user about the sources, in their order: finished files on standard output, failures
/// and, on a terminal, a progress line on standard error.
class CaptureReport {
 public:
  CaptureReport(const CaptureOptions& options, qsizetype sources);

  /// Shows what is being done for the source `index`; `step` is a few words.
  void progress(qsizetype index, const QString& step);

  /// Takes a result; results are told as soon as all before them have been.
  void finished(qsizetype index, CaptureResult result);

  /// Tells of the one document that all results went into, or why it could not be written.
  void joined(const std::optional<QString>& file, const MaybeError& error);

  bool isComplete() const { return next_ == results_.size(); }
  bool anyFailed() const { return anyFailed_; }

 private:
  void tell(const CaptureResult& result);
  void tellFile(const QString& file) const;
  void tellJson(const CaptureResult& result) const;
  void clearProgress();

  const CaptureOptions& options_;
  const bool showsProgress_;
  std::vector<std::optional<CaptureResult>> results_;
  std::size_t next_ = 0;
  bool anyFailed_ = false;
};
