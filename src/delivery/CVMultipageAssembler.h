#pragma once

#include <QList>
#include <QUrl>

#include "platform/base/Error.h"

/// Joins PDF files. Called on a pool thread.
class CVMultipageAssembler {
 public:
  virtual ~CVMultipageAssembler() = default;

  /// Writes one document with all pages of all files, in the order of the list, to `target`, which
  /// it replaces whole or not at all. A file that cannot be read adds no pages.
  virtual MaybeError mergePDFURLs(const QList<QUrl>& files, const QUrl& target) = 0;
};
