#pragma once

#include <vector>

#include "platform/pdf/internal/merge/Value.h"

namespace pdf {

/// Where an object stands.
struct ObjectPlace {
  enum class Kind : unsigned char { Unknown, Free, InFile, InStream };
  Kind kind = Kind::Unknown;
  std::uint64_t position = 0;  ///< from the file's start, or the number of an object stream
};

struct CrossReferences {
  std::vector<ObjectPlace> places;  ///< by object number
  Value trailer;
  size_t start = 0;  ///< of the newest section
};

/// Cross-reference tables and streams with their updates (ISO 32000-1, 7.5.4 to 7.5.8). Files that
/// mix both kinds and encrypted ones count as unsound, which leaves them to qpdf.
CrossReferences readCrossReferences(std::string_view file, Arena& arena);

}  // namespace pdf
