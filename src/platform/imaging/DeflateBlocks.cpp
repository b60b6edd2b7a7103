#include "platform/imaging/DeflateBlocks.h"

#include <libdeflate.h>
#include <zlib.h>

#include <new>
#include <optional>
#include <vector>

namespace imaging {

namespace {

/// Page pictures gain nothing from looking harder.
constexpr int level = 6;

/// What follows the last block to end on a byte: an empty stored block that is not the last.
constexpr qsizetype emptyBlockSize = 5;

struct BlockPlaces {
  /// Bits from the start: where the last block begins, and where it ends.
  size_t lastBlock = 0;
  size_t end = 0;
};

/// Unpacking is the only way to learn where blocks begin; what comes out is dropped.
std::optional<BlockPlaces> findBlocks(const char* packed, size_t size) {
  z_stream stream{};
  if (inflateInit2(&stream, -15) != Z_OK) return {};
  // The library's interface takes no constant input, though it only reads it.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed));
  stream.avail_in = uInt(size);
  std::vector<Bytef> dropped(64 * 1024);
  BlockPlaces places;
  int result = Z_OK;
  while (result == Z_OK) {
    stream.next_out = dropped.data();
    stream.avail_out = uInt(dropped.size());
    result = inflate(&stream, Z_BLOCK);
    const bool betweenBlocks = (stream.data_type & 128) != 0;
    const bool lastBlockBegan = (stream.data_type & 64) != 0;
    const size_t position = 8 * size_t(stream.total_in) - size_t(stream.data_type & 7);
    // At the end of the stream the rest of the last byte counts as read.
    if (betweenBlocks) (lastBlockBegan ? places.end : places.lastBlock) = position;
  }
  inflateEnd(&stream);
  if (result != Z_STREAM_END) return {};
  return places;
}

/// Takes the mark of the last block away, which is a block's first bit.
void leaveOpen(QByteArray& packed, const BlockPlaces& places) {
  char& byte = packed[qsizetype(places.lastBlock / 8)];
  byte = char(uchar(byte) & ~(1u << (places.lastBlock % 8)));
  // A stored block: three bits of zeros, the rest of the byte, and its length and that inverted.
  const size_t bitsForHeader = (8 - places.end % 8) % 8;
  if (bitsForHeader < 3) packed.append('\0');
  packed.append(QByteArrayView("\x00\x00\xff\xff", 4));
}

}  // namespace

void DeflateBlocks::Free::operator()(libdeflate_compressor* compressor) const {
  libdeflate_free_compressor(compressor);
}

DeflateBlocks::DeflateBlocks() : compressor_(libdeflate_alloc_compressor(level)) {
  if (!compressor_) throw std::bad_alloc();
}

QByteArray DeflateBlocks::pack(const QByteArray& bytes) {
  const size_t bound = libdeflate_deflate_compress_bound(compressor_.get(), size_t(bytes.size()));
  QByteArray packed(qsizetype(bound) + emptyBlockSize, Qt::Uninitialized);
  const size_t size = libdeflate_deflate_compress(compressor_.get(), bytes.constData(),
                                                  size_t(bytes.size()), packed.data(), bound);
  const auto places = size > 0 ? findBlocks(packed.constData(), size) : std::nullopt;
  if (!places) return {};
  packed.resize(qsizetype(size));
  leaveOpen(packed, *places);
  return packed;
}

}  // namespace imaging
