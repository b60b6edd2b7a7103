#include "platform/imaging/PngChunks.h"

#include <zlib.h>

#include <QtEndian>

namespace imaging::png {

QByteArray bigEndian(quint32 value) {
  QByteArray bytes(4, Qt::Uninitialized);
  qToBigEndian(value, bytes.data());
  return bytes;
}

quint32 readBigEndian(const char* bytes) {
  return qFromBigEndian<quint32>(bytes);
}

namespace {

quint32 checksum(QByteArrayView type, QByteArrayView data) {
  const auto add = [](uLong sum, QByteArrayView bytes) {
    return crc32_z(sum, reinterpret_cast<const Bytef*>(bytes.data()), size_t(bytes.size()));
  };
  // An empty piece would start the sum anew.
  const uLong ofType = add(0, type);
  return quint32(data.isEmpty() ? ofType : add(ofType, data));
}

}  // namespace

MaybeError writeChunk(PartFile& file, QByteArrayView type, QByteArrayView data) {
  if (auto error = file.write(bigEndian(quint32(data.size())) + type.toByteArray())) return error;
  if (auto error = file.write(data)) return error;
  return file.write(bigEndian(checksum(type, data)));
}

QByteArray sourceText(const QByteArray& address) {
  // Keyword, then: not compressed, no language, no translated keyword.
  return QByteArray("Source\0\0\0\0\0", 11) + address;
}

bool isSourceText(QByteArrayView type, QByteArrayView data) {
  const bool isText = type == "tEXt" || type == "iTXt" || type == "zTXt";
  return isText && data.startsWith(QByteArrayView("Source\0", 7));
}

bool ChunkReader::readSignature() {
  device_.seek(0);
  nextOffset_ = sizeof signature;
  return device_.read(sizeof signature) == QByteArrayView(signature, sizeof signature);
}

std::optional<ChunkHeader> ChunkReader::next() {
  if (!device_.seek(nextOffset_)) return {};
  const QByteArray head = device_.read(8);
  if (head.size() != 8) return {};
  ChunkHeader chunk{head.sliced(4), readBigEndian(head.constData()), nextOffset_ + 8};
  nextOffset_ = chunk.offset + chunk.length + 4;
  if (nextOffset_ > device_.size()) return {};
  return chunk;
}

std::optional<QByteArray> ChunkReader::data(const ChunkHeader& chunk, quint32 limit) {
  if (chunk.length > limit || !device_.seek(chunk.offset)) return {};
  QByteArray bytes = device_.read(qint64(chunk.length) + 4);
  if (bytes.size() != qsizetype(chunk.length) + 4) return {};
  const quint32 stored = readBigEndian(bytes.constData() + chunk.length);
  bytes.chop(4);
  if (checksum(chunk.type, bytes) != stored) return {};
  return bytes;
}

}  // namespace imaging::png
