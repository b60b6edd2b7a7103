#pragma once

#include <QString>

#include "platform/pdf/PicturePages.h"

namespace pdf {

/// Characters of one line from left to right. PDF shows text in this order and readers turn it back
/// when they copy right-to-left text. A short form of the Unicode bidirectional algorithm (UAX #9)
/// without embeddings: enough for the words that a layout engine hands out.
std::u32string visualOrder(const QString& text, TextDirection direction);

}  // namespace pdf
