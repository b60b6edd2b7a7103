#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QSize>
#include <memory>
#include <span>

#include "platform/base/Error.h"
#include "platform/imaging/PngChunks.h"

struct inflate_state;

namespace imaging {

/// Reads a PNG file in memory from its top to its end, a few rows at a time: the kind of file that
/// the engine makes, of 8-bit red, green and blue, with or without transparency, which is ignored,
/// in one pass. The checksum of the whole picture is checked, that of its chunks is not. One thread
/// at a time, any thread.
class PngReader {
 public:
  /// An error when the bytes are no such file.
  static Result<std::unique_ptr<PngReader>> create(QByteArray png);
  ~PngReader();

  /// Device pixels.
  QSize size() const { return size_; }
  int rowsLeft() const { return size_.height() - rowsRead_; }

  /// The next rows, `count` or what is left of them, as QImage::Format_RGB888.
  Result<QImage> rows(int count);

 private:
  explicit PngReader(QByteArray png);
  bool readHeader();
  bool feed();
  bool inflate(std::span<quint8> bytes);
  bool isWhole();
  bool unpackRow(uchar* filtered, uchar* row);

  QByteArray png_;
  QBuffer device_;
  png::ChunkReader chunks_;
  std::unique_ptr<inflate_state> inflate_;
  QSize size_;
  qsizetype bytesPerPixel_ = 0;
  QByteArray above_;
  int rowsRead_ = 0;
};

}  // namespace imaging
