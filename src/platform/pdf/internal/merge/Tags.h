#pragma once

#include <vector>

#include "platform/pdf/internal/merge/ObjectCopier.h"
#include "platform/pdf/internal/merge/Trees.h"

namespace pdf {

/// The tags of a document (ISO 32000-1, 14.7).
struct Tags {
  std::vector<QPDFObjectHandle> elements;  ///< the uppermost ones
  NumberTree content;                      ///< elements by the number of their content
  long long nextNumber = 0;
  NameTree identifiers;
  NameTree roles;
  NameTree classes;
};

/// The tags of one document that is to be joined to others.
class DocumentTags {
 public:
  /// `root` is the joined document's structure tree root.
  DocumentTags(QPDF& source, const Tags& joined, QPDFObjectHandle root, ObjectCopier& copier);

  /// Empty when the document has none, or none that can be used.
  Tags copy(ObjectCopier& copier);

 private:
  void prepareElements(QPDFObjectHandle kids, QPDFObjectHandle language);

  bool usable_ = false;
  Tags tags_;  ///< the source's, with its own names
  long long offset_ = 0;
};

void append(Tags& joined, const Tags& more);

/// Fills the structure tree root and marks the document as tagged.
void writeTags(QPDF& document, QPDFObjectHandle root, const Tags& tags);

}  // namespace pdf
