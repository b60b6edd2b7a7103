#pragma once

#include <QByteArray>

#include "platform/pdf/PicturePages.h"
#include "platform/pdf/internal/InvisibleFont.h"
#include "platform/pdf/internal/PictureSheet.h"

namespace pdf {

/// The operators that show the runs of a page in an invisible font named /F.
QByteArray invisibleText(const std::vector<TextRun>& runs, const PictureSheet& sheet,
                         InvisibleFont& font);

}  // namespace pdf
