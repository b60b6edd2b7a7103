#include "platform/imaging/PictureStrips.h"

#include <QFile>
#include <QFileInfo>

#include "platform/imaging/ImagingError.h"
#include "platform/imaging/PngChunks.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

/// Rows and sum, 4 bytes each.
constexpr qsizetype entrySize = 8;
/// Far more than the tallest picture has.
constexpr quint32 tableLimit = 8 * 1024 * 1024;

struct Chunks {
  QByteArray header;
  QByteArray table;
  std::vector<ByteRange> data;
};

std::optional<Chunks> readChunks(QIODevice& device) {
  png::ChunkReader reader(device);
  if (!reader.readSignature()) return {};
  Chunks chunks;
  while (const auto chunk = reader.next()) {
    if (chunk->type == "IEND") return chunks;
    if (chunk->type == "IDAT") chunks.data.push_back({chunk->offset, chunk->length});
    QByteArray* kept = chunk->type == "IHDR" ? &chunks.header : nullptr;
    if (chunk->type == png::stripsChunk) kept = &chunks.table;
    if (!kept) continue;
    auto data = reader.data(*chunk, tableLimit);
    if (!data) return {};
    *kept = std::move(*data);
  }
  return {};
}

bool isPlainRgb(const QByteArray& header) {
  return header.size() == 13 && header.sliced(8) == QByteArrayView("\x08\x02\x00\x00\x00", 5);
}

/// Deals the data chunks out to the strips, one each. The first and the last one belong to the
/// stream around them.
bool fillStrips(const Chunks& chunks, PictureStrips& picture) {
  const size_t count = size_t(chunks.table.size() / entrySize);
  if (chunks.data.size() != count + 2) return false;
  int row = 0;
  for (size_t index = 0; index < count; ++index) {
    const char* entry = chunks.table.constData() + qsizetype(index) * entrySize;
    const quint32 rows = png::readBigEndian(entry);
    if (rows == 0 || rows > quint32(picture.pixels.height() - row)) return false;
    picture.strips.push_back(
        {row, int(rows), chunks.data[index + 1], png::readBigEndian(entry + 4)});
    row += int(rows);
  }
  return row == picture.pixels.height();
}

}  // namespace

Result<PictureStrips> readPictureStrips(const QString& path) {
  QFile file(path);
  const auto unreadable = [&](const QString& reason) {
    return tl::unexpected(imagingError(
        ImagingError::CannotRead,
        u"The picture \"%1\" could not be read: %2."_s.arg(QFileInfo(path).fileName(), reason)));
  };
  if (!file.open(QIODevice::ReadOnly)) return unreadable(file.errorString());
  const auto chunks = readChunks(file);
  if (!chunks || !isPlainRgb(chunks->header)) return unreadable(u"the file is damaged"_s);
  const char* header = chunks->header.constData();
  PictureStrips picture{
      path, QSize(int(png::readBigEndian(header)), int(png::readBigEndian(header + 4))), {}};
  if (picture.pixels.isEmpty() || !fillStrips(*chunks, picture)) {
    return unreadable(u"it has no table of strips"_s);
  }
  return picture;
}

}  // namespace imaging
