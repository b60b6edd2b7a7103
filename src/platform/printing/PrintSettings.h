#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <optional>

#include "platform/printing/PrintInfo.h"

namespace printing {

enum class Sides { PrinterDefault, OneSided, TwoSidedLongEdge, TwoSidedShortEdge };

/// Pages from `first` to `last`, counted from 1, both included.
struct PageRange {
  int first = 1;
  int last = 1;

  friend bool operator==(const PageRange&, const PageRange&) = default;
};

/// What the user asks of the printer for one job.
struct PrintSettings {
  /// None: the default queue.
  std::optional<QString> queue = std::nullopt;
  /// "Print to file": the document is copied there and no queue is asked.
  std::optional<QString> outputFile = std::nullopt;
  int copies = 1;
  /// Empty: all pages.
  QList<PageRange> pageRanges = {};
  Sides sides = Sides::PrinterDefault;
  /// A media name (PWG 5101.1: "iso_a4_210x297mm", or the driver's own: "A4"); none: the queue's
  /// default.
  std::optional<QString> media = std::nullopt;
  /// Turns the document on the sheet. None for a document whose pages have their orientation
  /// already.
  std::optional<PaperOrientation> orientation = std::nullopt;
  QString title = {};
  /// Further options of the queue by name, as `lp -o name=value` takes them; they win over the
  /// above.
  QMap<QString, QString> options = {};
};

}  // namespace printing
