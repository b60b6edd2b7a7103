#pragma once

#include <QByteArray>
#include <QFile>
#include <optional>

#include "platform/imaging/PictureStrips.h"

namespace pdf {

/// The first row of a strip, three bytes a pixel. Unpacks no more than that row. Nothing when the
/// file cannot be read or is damaged there.
std::optional<QByteArray> firstRow(QFile& file, imaging::PictureStrip strip, int width);

/// All rows of a strip, which can take 16 MB.
std::optional<QByteArray> allRows(QFile& file, const imaging::PictureStrip& strip, int width);

}  // namespace pdf
