#include "platform/pdf/internal/StripRows.h"

#include <zlib.h>

#include <algorithm>

#include "platform/imaging/RowUnfilter.h"

namespace pdf {
namespace {

constexpr qint64 readPiece = 16 * 1024;
constexpr int colors = 3;

/// Unpacks raw deflate blocks until a buffer is full.
class Inflation {
 public:
  explicit Inflation(QByteArray& output) {
    usable_ = inflateInit2(&stream_, -MAX_WBITS) == Z_OK;
    stream_.next_out = reinterpret_cast<Bytef*>(output.data());
    stream_.avail_out = static_cast<uInt>(output.size());
  }
  ~Inflation() { inflateEnd(&stream_); }
  Inflation(const Inflation&) = delete;
  Inflation& operator=(const Inflation&) = delete;

  bool isComplete() const { return stream_.avail_out == 0; }

  bool add(QByteArray piece) {
    stream_.next_in = reinterpret_cast<Bytef*>(piece.data());
    stream_.avail_in = static_cast<uInt>(piece.size());
    return usable_ && inflate(&stream_, Z_SYNC_FLUSH) == Z_OK;
  }

 private:
  z_stream stream_{};
  bool usable_ = false;
};

bool unpack(QFile& file, const imaging::PictureStrip& strip, QByteArray& output) {
  Inflation inflation(output);
  if (!file.seek(strip.packed.offset)) return false;
  for (qint64 left = strip.packed.length; left > 0 && !inflation.isComplete();) {
    const QByteArray piece = file.read(std::min(left, readPiece));
    if (piece.isEmpty() || !inflation.add(piece)) return false;
    left -= piece.size();
  }
  return inflation.isComplete();
}

}  // namespace

std::optional<QByteArray> firstRow(QFile& file, imaging::PictureStrip strip, int width) {
  strip.rows = 1;
  return allRows(file, strip, width);
}

std::optional<QByteArray> allRows(QFile& file, const imaging::PictureStrip& strip, int width) {
  const qsizetype size = qsizetype{width} * colors;
  QByteArray filtered((1 + size) * strip.rows, '\0');
  if (!unpack(file, strip, filtered)) return std::nullopt;
  QByteArray rows(size * strip.rows, '\0');
  const QByteArray none(size, '\0');
  const auto* above = reinterpret_cast<const uchar*>(none.constData());
  for (qsizetype index = 0; index < strip.rows; ++index) {
    const char* const packed = filtered.constData() + index * (1 + size);
    auto* const row = reinterpret_cast<uchar*>(rows.data()) + index * size;
    std::copy_n(packed + 1, size, reinterpret_cast<char*>(row));
    if (!imaging::undoRowFilter(uchar(*packed), row, above, size, colors)) return std::nullopt;
    above = row;
  }
  return rows;
}

}  // namespace pdf
