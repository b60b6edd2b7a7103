#include "platform/pdf/internal/StripRows.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>

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

/// The Paeth predictor (PNG specification, section 9.4).
int paeth(int left, int above, int corner) {
  const int estimate = left + above - corner;
  const int toLeft = std::abs(estimate - left), toAbove = std::abs(estimate - above),
            toCorner = std::abs(estimate - corner);
  if (toLeft <= toAbove && toLeft <= toCorner) return left;
  return toAbove <= toCorner ? above : corner;
}

/// The filters of the PNG specification (section 9.2).
int predicted(int filter, int left, int above, int corner) {
  switch (filter) {
    case 1:
      return left;
    case 2:
      return above;
    case 3:
      return (left + above) / 2;
    case 4:
      return paeth(left, above, corner);
    default:
      return 0;
  }
}

/// `above` is empty for a strip's first row.
QByteArray unfiltered(QByteArrayView filtered, const QByteArray& above) {
  const int filter = filtered.front();
  QByteArray row = filtered.sliced(1).toByteArray();
  const auto byte = [](const QByteArray& bytes, qsizetype index) {
    return index < 0 || index >= bytes.size() ? 0 : static_cast<unsigned char>(bytes.at(index));
  };
  for (qsizetype index = 0; index < row.size() && filter != 0; ++index) {
    const int guess = predicted(filter, byte(row, index - colors), byte(above, index),
                                byte(above, index - colors));
    row[index] = static_cast<char>(row.at(index) + guess);
  }
  return row;
}

}  // namespace

std::optional<QByteArray> firstRow(QFile& file, const imaging::PictureStrip& strip, int width) {
  QByteArray filtered(1 + qsizetype{width} * colors, '\0');
  if (!unpack(file, strip, filtered)) return std::nullopt;
  return unfiltered(filtered, {});
}

std::optional<QByteArray> allRows(QFile& file, const imaging::PictureStrip& strip, int width) {
  const qsizetype size = 1 + qsizetype{width} * colors;
  QByteArray filtered(size * strip.rows, '\0');
  if (!unpack(file, strip, filtered)) return std::nullopt;
  QByteArray rows, above;
  rows.reserve((size - 1) * strip.rows);
  for (int row = 0; row < strip.rows; ++row) {
    above = unfiltered(QByteArrayView(filtered).sliced(row * size, size), above);
    rows += above;
  }
  return rows;
}

}  // namespace pdf
