#pragma once

#include <QByteArrayView>
#include <QString>

#include "platform/base/Error.h"
#include "platform/imaging/BitmapFormat.h"
#include "platform/imaging/PictureWriter.h"

namespace imaging {

/// A picture file, or the bytes of one.
struct PictureSource {
  QString path;
  /// Used when the path is empty.
  QByteArrayView bytes;
};

/// Reads the source through libvips row by row and writes it as a file of the given type.
MaybeError encodePicture(const PictureSource& source, const QString& targetPath,
                         BitmapFileType type, float compression, const PictureMetadata& metadata);

}  // namespace imaging
