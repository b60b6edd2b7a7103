#pragma once

#include "delivery/CVMultipageAssembler.h"

/// Joins PDF files, each with its own outline, links and tags. A file that cannot be read adds no
/// pages and a log line; only when none can be read is that an error.
class PDFMultipageAssembler : public CVMultipageAssembler {
 public:
  MaybeError mergePDFURLs(const QList<QUrl>& files, const QUrl& target) override;
};
