#pragma once

#include "platform/pdf/internal/merge/ObjectCopier.h"
#include "platform/pdf/internal/merge/Trees.h"

namespace pdf {

/// The named destinations of one document, of both styles, under names that are free in the joined
/// document.
class DocumentDestinations {
 public:
  /// `documentNumber` counts from 1.
  DocumentDestinations(const SourceFile& source, const NameTexts& taken, size_t documentNumber);

  void rename(Renaming& renaming) const;
  void copy(ObjectCopier& copier, NameTexts& joined) const;

 private:
  Renaming::Names oldStyleNames_;
  Renaming::Names names_;
  NameTree destinations_;  ///< the source's, under their new names
};

/// A name that neither set has, numbered from `number` when it is taken.
std::string freeName(const std::string& wish, size_t number, const NameTexts& taken,
                     const NameTree& own);

}  // namespace pdf
