#pragma once

#include <vector>

#include "platform/pdf/PicturePages.h"
#include "platform/pdf/internal/SequentialFile.h"

namespace pdf {

struct OutlineEntry {
  QString text;
  int level = 1;
  QByteArray destination;  ///< a destination array
};

/// Writes the entries as a tree by their levels (ISO 32000-1, 12.3.3), all open. Returns the
/// outline's object number.
int writeOutline(SequentialFile& file, const std::vector<OutlineEntry>& entries);

}  // namespace pdf
