#pragma once

#include <QRgb>
#include <vector>

#include "platform/imaging/ColourCensus.h"

namespace imaging {

/// At most 256 colours for a picture.
struct Palette {
  std::vector<QRgb> colours;
  /// So many of them, from the first on, are the picture's own: its pixels of these colours are to
  /// stay exactly as they are.
  size_t exact = 0;
};

/// All colours of a picture that has few; otherwise those of its even grounds, and for the rest the
/// means of boxes of colours.
Palette paletteFor(const ColourCensus& census);

}  // namespace imaging
