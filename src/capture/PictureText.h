#pragma once

#include "platform/pdf/PicturePages.h"
#include "platform/rendering/TextLayer.h"

namespace capture {

/// The text layer of a rendered page as it is laid over its picture in a PDF.
pdf::PictureText pictureText(const rendering::TextLayer& layer);

}  // namespace capture
