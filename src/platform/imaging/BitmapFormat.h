#pragma once

#include <QSize>
#include <QString>
#include <span>

#include "platform/base/Error.h"

namespace imaging {

/// Kinds of picture file, by the code that settings and callers pass as a number.
enum class BitmapFileType : unsigned {
  TIFF = 0,
  BMP = 1,
  GIF = 2,
  JPEG = 3,
  PNG = 4,
  JPEG2000 = 5
};

enum class CompressionFactor { Ignored, Used };

/// Where a kind of file keeps the address that its picture came from.
enum class AddressPlace {
  None,
  TextChunk,         ///< PNG: iTXt chunk with the keyword "Source" (PNG, 11.3.4.5)
  XmpPacket,         ///< dc:source in an XMP packet
  ImageDescription,  ///< TIFF tag 270, and an XMP packet
  Comment,           ///< GIF comment extension (GIF89a, 24)
  XmpBox,            ///< JPEG 2000: an XMP packet in a UUID box
};

/// What a kind of picture file can do.
struct BitmapFormat {
  BitmapFileType type;
  QString name;
  /// Without the dot.
  QString extension;
  QString mimeType;
  CompressionFactor compressionFactor;
  /// Most device pixels each way; 0 where the format's own limit is beyond any picture made here.
  int longestSide;
  AddressPlace addressPlace;
};

std::span<const BitmapFormat> bitmapFormats();
const BitmapFormat& bitmapFormat(BitmapFileType type);
/// PNG for a code that stands for nothing.
BitmapFileType bitmapFileTypeWithCode(unsigned code);

/// The reason why a picture of that many device pixels cannot be a file of that type, if there is
/// one.
MaybeError sizeError(BitmapFileType type, QSize pixels);

}  // namespace imaging
