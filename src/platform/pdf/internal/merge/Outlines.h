#pragma once

#include <string>
#include <vector>

#include "platform/pdf/internal/merge/ObjectCopier.h"

namespace pdf {

/// A document's heading in the joined document's outline.
struct DocumentHeading {
  int object = 0;
  std::string entries;  ///< without those that tie it to its neighbours
};

/// A heading over a copy of the document's own outline. It leads to the page `page` of the target
/// and is closed. `title` is a string object's text.
DocumentHeading outlineHeading(CompactFile& target, const SourceFile& source, ObjectCopier& copier,
                               const std::string& title, int page);

/// Returns the outline's object.
int writeOutline(CompactFile& target, const std::vector<DocumentHeading>& headings);

}  // namespace pdf
