#pragma once

#include <QString>
#include <vector>

#include "platform/pdf/internal/merge/ObjectCopier.h"

namespace pdf {

/// A heading for a document in the joined document's outline, over a copy of the document's own
/// outline. It leads to `page` and is closed.
QPDFObjectHandle outlineHeading(QPDF& target, QPDF& source, ObjectCopier& copier,
                                const QString& title, QPDFObjectHandle page);

void writeOutline(QPDF& document, const std::vector<QPDFObjectHandle>& headings);

}  // namespace pdf
