#pragma once

#include <QByteArrayView>
#include <QString>

#include "platform/base/Error.h"
#include "platform/imaging/BitmapFormat.h"
#include "platform/imaging/PictureWriter.h"

namespace imaging {

/// Makes a picture file of the given type from another picture file. Rows stream through, so memory
/// does not grow with the height; GIF reads the source twice. Transparency is laid on white,
/// colours become sRGB. A PNG file that becomes a PNG file keeps its bytes and only gets the
/// address. `compression` is 0.0 for the smallest file to 1.0 for the best picture, and matters
/// where the format uses it. The target appears whole or not at all and replaces what was there;
/// source and target may be the same file. Any thread.
MaybeError convertPicture(const QString& sourcePath, const QString& targetPath, BitmapFileType type,
                          float compression, const PictureMetadata& metadata = {});

/// The same, from the bytes of a picture file. They must stay as they are until the call returns.
MaybeError convertPictureData(QByteArrayView source, const QString& targetPath, BitmapFileType type,
                              float compression, const PictureMetadata& metadata = {});

}  // namespace imaging
