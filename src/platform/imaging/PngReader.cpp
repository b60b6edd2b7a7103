#include "platform/imaging/PngReader.h"

#include <isa-l/igzip_lib.h>

#include <cstring>

#include "platform/imaging/ImagingError.h"
#include "platform/imaging/PixelRows.h"
#include "platform/imaging/RowUnfilter.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype bytesPerResultPixel = 3;
/// Far above what any program of ours asks a picture of; keeps sizes within their types.
constexpr quint32 longestSide = 1 << 24;

tl::unexpected<Error> unreadable() {
  return tl::unexpected(
      imagingError(ImagingError::NoPicture, u"The picture cannot be read: it is damaged."_s));
}

/// Of 8-bit pixels; 0: another kind of picture.
qsizetype bytesPerPixel(const QByteArray& header) {
  const QByteArrayView kind = QByteArrayView(header).sliced(8);
  if (kind == QByteArrayView("\x08\x02\x00\x00\x00", 5)) return 3;
  if (kind == QByteArrayView("\x08\x06\x00\x00\x00", 5)) return 4;
  return 0;
}

}  // namespace

Result<std::unique_ptr<PngReader>> PngReader::create(QByteArray png) {
  std::unique_ptr<PngReader> reader(new PngReader(std::move(png)));
  if (!reader->readHeader()) return unreadable();
  return reader;
}

PngReader::PngReader(QByteArray png)
    : png_(std::move(png)),
      device_(&png_),
      chunks_(device_),
      inflate_(std::make_unique<inflate_state>()) {
  device_.open(QIODevice::ReadOnly);
  isal_inflate_init(inflate_.get());
  inflate_->crc_flag = ISAL_ZLIB;
}

PngReader::~PngReader() = default;

bool PngReader::readHeader() {
  if (!chunks_.readSignature()) return false;
  const auto chunk = chunks_.next();
  if (!chunk || chunk->type != "IHDR" || chunk->length != 13) return false;
  const QByteArray header = png_.sliced(chunk->offset, chunk->length);
  const quint32 width = png::readBigEndian(header.constData());
  const quint32 height = png::readBigEndian(header.constData() + 4);
  bytesPerPixel_ = bytesPerPixel(header);
  if (bytesPerPixel_ == 0 || width - 1 >= longestSide || height - 1 >= longestSide) return false;
  size_ = {int(width), int(height)};
  above_.fill('\0', width * bytesPerPixel_);
  return true;
}

/// The next piece of packed data.
bool PngReader::feed() {
  while (const auto chunk = chunks_.next()) {
    if (chunk->type == "IEND") return false;
    if (chunk->type != "IDAT") continue;
    // The library's interface takes no constant input, though it only reads it.
    inflate_->next_in =
        reinterpret_cast<quint8*>(const_cast<char*>(png_.constData() + chunk->offset));
    inflate_->avail_in = chunk->length;
    return true;
  }
  return false;
}

/// Fills `bytes`, or stops at the end of the data; false when these are damaged or cut short. The
/// library may hold the last of what it was fed, so it is asked once more when nothing is left.
bool PngReader::inflate(std::span<quint8> bytes) {
  inflate_->next_out = bytes.data();
  inflate_->avail_out = quint32(bytes.size());
  while (inflate_->avail_out > 0 && inflate_->block_state != ISAL_BLOCK_FINISH) {
    const bool starves = inflate_->avail_in == 0 && !feed();
    const quint32 missing = inflate_->avail_out;
    if (isal_inflate(inflate_.get()) != ISAL_DECOMP_OK) return false;
    const bool ended = inflate_->block_state == ISAL_BLOCK_FINISH;
    if (starves && inflate_->avail_out == missing && !ended) return false;
  }
  return true;
}

/// Whether the data end where the rows do, with the right checksum.
bool PngReader::isWhole() {
  quint8 more = 0;
  return inflate({&more, 1}) && inflate_->avail_out == 1;
}

/// Leaves the row as it is in the file in `above_`, for the next one.
bool PngReader::unpackRow(uchar* filtered, uchar* row) {
  uchar* const bytes = filtered + 1;
  uchar* const above = reinterpret_cast<uchar*>(above_.data());
  if (!undoRowFilter(*filtered, bytes, above, above_.size(), bytesPerPixel_)) return false;
  std::memcpy(above, bytes, size_t(above_.size()));
  if (bytesPerPixel_ == bytesPerResultPixel) {
    std::memcpy(row, bytes, size_t(above_.size()));
    return true;
  }
  for (int x = 0; x < size_.width(); ++x)
    std::memcpy(row + x * bytesPerResultPixel, bytes + x * bytesPerPixel_, bytesPerResultPixel);
  return true;
}

Result<QImage> PngReader::rows(int count) {
  QImage rows(size_.width(), qMin(count, rowsLeft()), QImage::Format_RGB888);
  if (rows.isNull()) return tl::unexpected(noMemoryForRows());
  const qsizetype bytesPerRow = above_.size() + 1;
  QByteArray filtered(bytesPerRow * rows.height(), Qt::Uninitialized);
  const std::span bytes(reinterpret_cast<quint8*>(filtered.data()), size_t(filtered.size()));
  if (!inflate(bytes) || inflate_->avail_out > 0) return unreadable();
  for (int row = 0; row < rows.height(); ++row) {
    if (!unpackRow(bytes.data() + row * bytesPerRow, rows.scanLine(row))) return unreadable();
  }
  rowsRead_ += rows.height();
  if (rowsLeft() == 0 && !isWhole()) return unreadable();
  return rows;
}

}  // namespace imaging
