#include "platform/imaging/DeflateBlocks.h"

#include <isa-l/igzip_lib.h>

namespace imaging {

namespace {

/// Looks twice as hard as the first level, at no cost that could be measured. The third is for
/// processors of the newest kind only.
constexpr unsigned level = 2;
constexpr size_t levelMemory = ISAL_DEF_LVL2_DEFAULT;

/// Bytes that do not pack go through in stored blocks of 5 bytes and up to 65,535 of content.
qsizetype mostPacked(qsizetype size) {
  return size + size / 1000 + 1024;
}

}  // namespace

DeflateBlocks::DeflateBlocks() : memory_(levelMemory) {}

QByteArray DeflateBlocks::pack(const QByteArray& bytes) {
  QByteArray packed(mostPacked(bytes.size()), Qt::Uninitialized);
  isal_zstream stream;
  isal_deflate_init(&stream);
  stream.level = level;
  stream.level_buf = memory_.data();
  stream.level_buf_size = quint32(memory_.size());
  stream.flush = FULL_FLUSH;
  // The library's interface takes no constant input, though it only reads it.
  stream.next_in = reinterpret_cast<quint8*>(const_cast<char*>(bytes.constData()));
  stream.avail_in = quint32(bytes.size());
  stream.next_out = reinterpret_cast<quint8*>(packed.data());
  stream.avail_out = quint32(packed.size());
  const bool complete =
      isal_deflate(&stream) == COMP_OK && stream.avail_in == 0 && stream.avail_out > 0;
  if (!complete) return {};
  packed.truncate(qsizetype(stream.total_out));
  return packed;
}

}  // namespace imaging
