#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <qpdf/QPDF.hh>

#include "platform/pdf/DocumentAttributes.h"

namespace pdf {

/// Replaces document information and XMP packet.
void writeInformation(QPDF& document, const DocumentAttributes& attributes);

/// Reads the document information; what is no text or no date is left out.
DocumentAttributes readInformation(QPDF& document);

}  // namespace pdf
