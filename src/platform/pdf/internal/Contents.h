#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <memory>
#include <optional>
#include <qpdf/QPDF.hh>
#include <vector>

#include "platform/pdf/PDFDocument.h"

namespace pdf {

struct PDFDocument::Contents {
  explicit Contents(std::unique_ptr<QPDF> document) : holder(std::move(document)), qpdf(*holder) {}

  std::unique_ptr<QPDF> holder;
  QPDF& qpdf;
  /// Documents whose pages were taken over: their files are read when this one is written.
  std::vector<std::shared_ptr<Contents>> origins;
  /// The file, as long as nothing but what the document says of itself has changed, and what it
  /// says instead.
  QString unchangedFile;
  std::optional<DocumentAttributes> attributes;
};

}  // namespace pdf
