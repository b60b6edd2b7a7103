#pragma once

#include <QString>

#include "platform/base/Error.h"
#include "platform/pdf/DocumentAttributes.h"

namespace pdf {

/// Whether the copy was made. Some files only qpdf can read.
enum class DescribedCopy { Made, NotPossible };

/// Writes a compact copy of the document at `source` that says `attributes` of itself, in its
/// document information and its XMP packet, and is else the same, object by object. Several times
/// as fast as taking the document apart.
Result<DescribedCopy> makeDescribedCopy(const QString& source, const QString& target,
                                        const DocumentAttributes& attributes);

}  // namespace pdf
