#include "platform/pdf/internal/FirstRow.h"

#include <zlib.h>

#include <algorithm>

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

/// The filters of the PNG specification (section 9.2) where there is no row above.
int predicted(int filter, int left) {
  switch (filter) {
    case 1:
    case 4:
      return left;
    case 3:
      return left / 2;
    default:
      return 0;
  }
}

}  // namespace

std::optional<QByteArray> firstRow(QFile& file, const imaging::PictureStrip& strip, int width) {
  QByteArray row(1 + qsizetype{width} * colors, '\0');
  if (!unpack(file, strip, row)) return std::nullopt;
  const int filter = row.at(0);
  row.remove(0, 1);
  for (qsizetype index = colors; index < row.size(); ++index) {
    const int left = static_cast<unsigned char>(row.at(index - colors));
    row[index] = static_cast<char>(row.at(index) + predicted(filter, left));
  }
  return row;
}

}  // namespace pdf
