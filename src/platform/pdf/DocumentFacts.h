#pragma once

#include <QSizeF>
#include <QString>
#include <vector>

#include "platform/base/Error.h"
#include "platform/pdf/DocumentAttributes.h"

namespace pdf {

struct DocumentFacts {
  std::vector<QSizeF> pageSizes;  ///< points, as a reader shows the pages
  bool hasOutline = false;
  bool isTagged = false;
  DocumentAttributes attributes;

  int pageCount() const { return static_cast<int>(pageSizes.size()); }
};

/// Reads what a file holds, without keeping it open. Any thread. Errors as of `PDFDocument::open`.
Result<DocumentFacts> documentFacts(const QString& path);

}  // namespace pdf
