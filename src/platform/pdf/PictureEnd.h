#pragma once

namespace imaging {
struct PictureStrips;
}

namespace pdf {

/// How many rows at a picture's end are white, up to all of them. Unpacks the file from its end up
/// to the first row with anything else. 0 when it cannot be read. Any thread.
int whiteRowsAtEnd(const imaging::PictureStrips& picture);

}  // namespace pdf
