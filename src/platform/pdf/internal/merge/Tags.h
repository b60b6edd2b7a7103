#pragma once

#include <string>
#include <vector>

#include "platform/pdf/internal/merge/ObjectCopier.h"
#include "platform/pdf/internal/merge/Trees.h"

namespace pdf {

/// The tags of the joined document (ISO 32000-1, 14.7), as texts.
struct Tags {
  std::string elements;  ///< the uppermost ones
  NumberTexts content;   ///< elements by the number of their content
  long long nextNumber = 0;
  NameTexts identifiers;
  NameTexts roles;
  NameTexts classes;
};

/// The tags of one document that is to be joined to others.
class DocumentTags {
 public:
  /// `root` is the joined document's structure tree root. `documentNumber` counts from 1.
  DocumentTags(const SourceFile& source, const Tags& joined, int root, size_t documentNumber,
               ObjectCopier& copier);

  /// Adds nothing when the document has no tags, or none that can be used.
  void copy(ObjectCopier& copier, Tags& joined) const;

 private:
  void prepareElements(const SourceFile& source, const Value& kids, ObjectCopier& copier);

  bool usable_ = false;
  std::vector<Value> elements_;
  NumberTree content_;
  long long nextNumber_ = 0;
  NameTree identifiers_, roles_, classes_;
};

/// Writes the structure tree root. Returns the entries of the catalog that belong to it.
std::string writeTags(CompactFile& target, int root, const Tags& tags);

}  // namespace pdf
