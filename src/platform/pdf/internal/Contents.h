#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <memory>
#include <optional>
#include <qpdf/QPDF.hh>
#include <vector>

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/FileIdentity.h"
#include "platform/pdf/internal/Information.h"

namespace pdf {

struct PDFDocument::Contents {
  explicit Contents(std::unique_ptr<QPDF> document) : holder(std::move(document)), qpdf(*holder) {}

  std::unique_ptr<QPDF> holder;
  QPDF& qpdf;
  /// Documents whose pages were taken over: their files are read when this one is written.
  std::vector<std::shared_ptr<Contents>> origins;
  /// The file that was opened, as long as nothing but what the document says of itself has changed.
  FileIdentity unchangedFile;
  /// What it is to say of itself, not yet put in: qpdf reads all objects to add one.
  std::optional<DocumentAttributes> newAttributes;

  void putAttributesIn() {
    if (newAttributes) writeInformation(qpdf, *newAttributes);
    newAttributes.reset();
  }
};

}  // namespace pdf
