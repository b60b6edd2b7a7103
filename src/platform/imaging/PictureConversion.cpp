#include "platform/imaging/PictureConversion.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>

#include "platform/imaging/AddressMark.h"
#include "platform/imaging/EncodedPicture.h"
#include "platform/imaging/ImagingError.h"
#include "platform/imaging/PngCopy.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

MaybeError convert(QIODevice& device, const PictureSource& source, const QString& targetPath,
                   BitmapFileType type, float compression, const PictureMetadata& metadata) {
  if (device.size() == 0) {
    return imagingError(ImagingError::CannotRead, u"The picture is empty: it has no bytes."_s);
  }
  if (type == BitmapFileType::PNG && isPng(device)) {
    return copyPng(device, targetPath, addressToKeep(metadata));
  }
  return encodePicture(source, targetPath, type, compression, metadata);
}

}  // namespace

MaybeError convertPicture(const QString& sourcePath, const QString& targetPath, BitmapFileType type,
                          float compression, const PictureMetadata& metadata) {
  QFile file(sourcePath);
  if (!file.open(QIODevice::ReadOnly)) {
    return imagingError(ImagingError::CannotRead,
                        u"The picture \"%1\" could not be read: %2."_s.arg(
                            QFileInfo(sourcePath).fileName(), file.errorString()));
  }
  return convert(file, {sourcePath, {}}, targetPath, type, compression, metadata);
}

MaybeError convertPictureData(QByteArrayView source, const QString& targetPath, BitmapFileType type,
                              float compression, const PictureMetadata& metadata) {
  QByteArray bytes = QByteArray::fromRawData(source.data(), source.size());
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  return convert(buffer, {{}, source}, targetPath, type, compression, metadata);
}

}  // namespace imaging
