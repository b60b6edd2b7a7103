#pragma once

#include <QByteArray>

namespace pdf {

/// A TrueType font (ISO/IEC 14496-22) of two empty glyphs, 1,000 units to the em, with just the
/// tables that a PDF needs of an embedded font.
QByteArray emptyTrueType();

}  // namespace pdf
