#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QIODevice>
#include <optional>

#include "platform/base/Error.h"
#include "platform/imaging/PartFile.h"

namespace imaging {

/// The outer structure of a PNG file (PNG, third edition, 5): a signature, then chunks of length,
/// type, data, checksum.
namespace png {

inline constexpr char signature[8] = {'\x89', 'P', 'N', 'G', '\r', '\n', '\x1a', '\n'};

/// Where the strips of the picture's data end. Private to this program and not safe to copy: a
/// program that packs the picture anew must drop it.
inline constexpr char stripsChunk[] = "cvST";

/// The value's four bytes, the highest first.
QByteArray bigEndian(quint32 value);
quint32 readBigEndian(const char* bytes);

MaybeError writeChunk(PartFile& file, QByteArrayView type, QByteArrayView data);

/// The text chunk that says where the picture came from, as type and data.
QByteArray sourceText(const QByteArray& address);
bool isSourceText(QByteArrayView type, QByteArrayView data);

struct ChunkHeader {
  QByteArray type;
  quint32 length = 0;
  /// Of the data, from the start of the file.
  qint64 offset = 0;
};

/// Walks the chunks of a file in their order. Each step checks that the file is long enough for the
/// chunk it announces; checksums are the business of who reads the data.
class ChunkReader {
 public:
  /// `device` is open, seekable and outlives the reader.
  explicit ChunkReader(QIODevice& device) : device_(device) {}

  /// False when this is no PNG file.
  bool readSignature();
  /// The next chunk, wherever its data was read to; nothing when the file is cut short.
  std::optional<ChunkHeader> next();
  /// The data of a chunk of at most `limit` bytes, if its checksum is right.
  std::optional<QByteArray> data(const ChunkHeader& chunk, quint32 limit);

 private:
  QIODevice& device_;
  qint64 nextOffset_ = 0;
};

}  // namespace png
}  // namespace imaging
