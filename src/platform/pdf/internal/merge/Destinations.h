#pragma once

#include "platform/pdf/internal/merge/ObjectCopier.h"
#include "platform/pdf/internal/merge/Trees.h"

namespace pdf {

/// The named destinations of one document, of both styles, under names that are free in the joined
/// document.
class DocumentDestinations {
 public:
  /// `documentNumber` counts from 1.
  DocumentDestinations(QPDF& source, const NameTree& taken, size_t documentNumber);

  void rename(Renaming& renaming) const;
  NameTree copy(ObjectCopier& copier) const;

 private:
  Renaming::Names oldStyleNames_;
  Renaming::Names names_;
  NameTree destinations_;  ///< the source's, under their new names
};

}  // namespace pdf
