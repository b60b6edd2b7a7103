#pragma once

#include <qpdf/QPDF.hh>

namespace pdf {

/// Draws a document's visible form fields as they look into their pages' contents and takes the
/// fields away.
void drawFields(QPDF& document);

}  // namespace pdf
