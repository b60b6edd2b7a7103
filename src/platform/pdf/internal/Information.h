#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <QByteArray>
#include <qpdf/QPDF.hh>
#include <string>

#include "platform/pdf/DocumentAttributes.h"

namespace pdf {

/// The document information as a PDF file spells it, and the XMP packet that says the same.
std::string informationText(const DocumentAttributes& attributes);
QByteArray xmpPacket(const DocumentAttributes& attributes);

/// Replaces document information and XMP packet.
void writeInformation(QPDF& document, const DocumentAttributes& attributes);

/// Reads the document information; what is no text or no date is left out.
DocumentAttributes readInformation(QPDF& document);

}  // namespace pdf
