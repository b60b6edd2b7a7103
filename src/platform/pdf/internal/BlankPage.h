#pragma once

#include "platform/pdf/internal/merge/SourceFile.h"

namespace pdf {

/// Whether a page shows nothing but white. In doubt it does not count as blank.
bool isBlank(const SourceFile& document, const SourcePage& page);

}  // namespace pdf
