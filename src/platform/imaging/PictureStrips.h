#pragma once

#include <QSize>
#include <QString>
#include <QtGlobal>
#include <vector>

#include "platform/base/Error.h"

namespace imaging {

/// Bytes of a file: from `offset`, `length` of them.
struct ByteRange {
  qint64 offset = 0;
  qint64 length = 0;
};

/// Whole rows of a picture whose compressed data stands on its own: deflate blocks (RFC 1951) that
/// end on a byte and refer to nothing before them, but none of them is marked as the last. A
/// complete zlib stream (RFC 1950) is therefore
///
///     PictureStrips::streamHeader + the packed bytes + PictureStrips::lastBlock + adler,
///     big-endian
///
/// and unpacks to `rows` rows, each a PNG filter byte followed by width x 3 bytes (red, green,
/// blue; 8 bits each). The first row's filter does not look at the row above. In a PDF that is
/// /FlateDecode with /Predictor 15, /Colors 3, /BitsPerComponent 8, /Columns width.
struct PictureStrip {
  int firstRow = 0;
  int rows = 0;
  ByteRange packed;
  quint32 adler = 0;
};

/// A PNG file as strips that follow one another from the top of the picture to its end: opaque
/// sRGB, 8 bits a channel.
struct PictureStrips {
  static constexpr char streamHeader[2] = {0x78, 0x01};
  /// An empty block that is marked as the last one.
  static constexpr char lastBlock[2] = {0x03, 0x00};

  QString path;
  /// Device pixels.
  QSize pixels;
  std::vector<PictureStrip> strips;
};

/// Where the strips lie in a PNG file that PictureWriter has written. Reads the chunk headers, not
/// the picture. An error when the file is damaged or was written by another program. Any thread.
Result<PictureStrips> readPictureStrips(const QString& path);

}  // namespace imaging
