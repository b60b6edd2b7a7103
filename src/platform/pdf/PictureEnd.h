#pragma once

namespace imaging {
struct PictureStrips;
}

namespace pdf {

/// How many of a picture's last `most` rows, from its end up to the first one with anything else,
/// are white. 0 when the file cannot be read. Any thread.
int whiteRowsAtEnd(const imaging::PictureStrips& picture, int most);

}  // namespace pdf
