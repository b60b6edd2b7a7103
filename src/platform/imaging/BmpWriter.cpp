#include "platform/imaging/BmpWriter.h"

#include <QtEndian>
#include <cmath>
#include <cstring>

#include "platform/imaging/PixelRows.h"

namespace imaging {

namespace {

constexpr quint32 fileHeaderSize = 14;
constexpr quint32 infoHeaderSize = 108;
constexpr quint32 pixelsOffset = fileHeaderSize + infoHeaderSize;

void put(QByteArray& header, qsizetype at, quint32 value) {
  qToLittleEndian(value, header.data() + at);
}

}  // namespace

Result<std::unique_ptr<PictureWriter>> BmpWriter::create(const QString& path, QSize devicePixels,
                                                         const PictureOptions& options) {
  auto file = PartFile::create(path);
  if (!file) return tl::unexpected(file.error());
  std::unique_ptr<BmpWriter> writer(new BmpWriter(std::move(*file), devicePixels));
  if (auto error = writer->file_->write(writer->header(options.pixelsPerPoint))) {
    return tl::unexpected(*error);
  }
  return writer;
}

BmpWriter::BmpWriter(std::unique_ptr<PartFile> file, QSize devicePixels)
    : file_(std::move(file)), pixels_(devicePixels) {}

QByteArray BmpWriter::header(double pixelsPerPoint) const {
  const quint32 imageSize = quint32(bytesPerRow() * pixels_.height());
  const quint32 perMetre = quint32(std::lround(72 * pixelsPerPoint / 0.0254));
  QByteArray bytes(pixelsOffset, '\0');
  bytes.replace(0, 2, "BM");
  put(bytes, 2, pixelsOffset + imageSize);
  put(bytes, 10, pixelsOffset);
  put(bytes, 14, infoHeaderSize);
  put(bytes, 18, quint32(pixels_.width()));
  put(bytes, 22, quint32(pixels_.height()));
  put(bytes, 26, 1 | 24 << 16);  // planes, bits a pixel
  put(bytes, 34, imageSize);
  put(bytes, 38, perMetre);
  put(bytes, 42, perMetre);
  put(bytes, 70, 0x73524742);  // LCS_sRGB
  return bytes;
}

MaybeError BmpWriter::append(const QImage& rows) {
  if (!failure_) failure_ = appendRows(rows);
  return failure_;
}

MaybeError BmpWriter::appendRows(const QImage& rows) {
  if (auto error = rowsError(rows, pixels_, rowsDone_)) return error;
  const QImage swapped = opaqueRows(rows, QImage::Format_BGR888);
  if (swapped.isNull()) return noMemoryForRows();
  QByteArray block(bytesPerRow() * swapped.height(), '\0');
  for (int row = 0; row < swapped.height(); ++row) {
    char* place = block.data() + bytesPerRow() * (swapped.height() - 1 - row);
    std::memcpy(place, swapped.constScanLine(row), size_t(pixels_.width()) * 3);
  }
  rowsDone_ += swapped.height();
  return file_->writeAt(pixelsOffset + qint64(bytesPerRow()) * (pixels_.height() - rowsDone_),
                        block);
}

MaybeError BmpWriter::finish() {
  if (!failure_) failure_ = missingRowsError(pixels_, rowsDone_);
  if (!failure_) failure_ = file_->commit();
  return failure_;
}

}  // namespace imaging
