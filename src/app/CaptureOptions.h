#pragma once

#include <QSizeF>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

#include "platform/base/Error.h"
#include "platform/base/Font.h"

enum class Verbosity { Quiet, Normal, Verbose };
enum class ReportForm { Text, JsonLines };

/// What `corvalis capture` was asked for.
struct CaptureOptions {
  QStringList sources;
  std::optional<QString> output;
  /// One PDF of all sources, paginated, instead of a file for each.
  std::optional<QString> multipage;
  QString destination = QStringLiteral("Disk");
  QString format = QStringLiteral("PDF");
  /// None: Vector, or what the destination brings with it.
  std::optional<QString> mode;
  /// Points.
  std::uint64_t width = 1024;
  /// Device pixels per point.
  double scale = 1;
  float compression = 1;
  bool prependDomain = false;

  bool paginate = false;
  /// Points.
  std::uint64_t margin = 50;
  std::int64_t orientation = 0;
  bool headers = false;
  std::optional<Font> font;
  std::optional<QString> notes;
  /// Points; none: the paper of the locale.
  std::optional<QSizeF> paper;

  /// `output` where it names the file of the one source; none where it names a folder.
  std::optional<QString> outputFile() const;

  ReportForm report = ReportForm::Text;
  Verbosity verbosity = Verbosity::Normal;

  /// `arguments` begins with what follows "capture". The error is one sentence on what is wrong
  /// with them. "--help" comes back as the help text instead of options.
  struct Parsed;
  static Result<Parsed> parse(const QStringList& arguments);
  static QString help();
};

struct CaptureOptions::Parsed {
  CaptureOptions options;
  bool helpWanted = false;
};
