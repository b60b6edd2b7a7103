#include "platform/imaging/PngCopy.h"

#include <zlib.h>

#include "platform/imaging/ImagingError.h"
#include "platform/imaging/PngChunks.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 pieceSize = 256 * 1024;
/// Of a text chunk that is looked at.
constexpr quint32 textLimit = 64 * 1024;

Error damaged() {
  return imagingError(ImagingError::CannotRead,
                      u"The picture is damaged: the PNG file is cut short or changed."_s);
}

/// A chunk of any length, in pieces.
MaybeError copyChunk(QIODevice& source, const png::ChunkHeader& chunk, PartFile& target) {
  if (auto error = target.write(png::bigEndian(chunk.length) + chunk.type)) return error;
  const auto add = [](uLong sum, const QByteArray& bytes) {
    return crc32_z(sum, reinterpret_cast<const Bytef*>(bytes.constData()), size_t(bytes.size()));
  };
  uLong sum = add(0, chunk.type);
  if (!source.seek(chunk.offset)) return damaged();
  for (qint64 left = chunk.length; left > 0;) {
    const QByteArray piece = source.read(std::min(left, pieceSize));
    if (piece.isEmpty()) return damaged();
    sum = add(sum, piece);
    left -= piece.size();
    if (auto error = target.write(piece)) return error;
  }
  const QByteArray stored = source.read(4);
  if (stored != png::bigEndian(quint32(sum))) return damaged();
  return target.write(stored);
}

bool isLeftOut(png::ChunkReader& reader, const png::ChunkHeader& chunk, const QByteArray& address) {
  if (chunk.type == png::stripsChunk) return true;
  if (address.isEmpty() || !chunk.type.endsWith("Xt")) return false;
  const auto data = reader.data(chunk, textLimit);
  return data && png::isSourceText(chunk.type, *data);
}

MaybeError copyChunks(QIODevice& source, PartFile& target, const QByteArray& address) {
  png::ChunkReader reader(source);
  if (!reader.readSignature()) return damaged();
  if (auto error = target.write({png::signature, sizeof png::signature})) return error;
  bool hasPixels = false;
  while (const auto chunk = reader.next()) {
    hasPixels |= chunk->type == "IDAT";
    if (chunk->type == "IEND" && !hasPixels) break;
    if (isLeftOut(reader, *chunk, address)) continue;
    if (auto error = copyChunk(source, *chunk, target)) return error;
    if (chunk->type == "IEND") return {};
    if (chunk->type != "IHDR" || address.isEmpty()) continue;
    if (auto error = png::writeChunk(target, "iTXt", png::sourceText(address))) return error;
  }
  return damaged();
}

}  // namespace

bool isPng(QIODevice& source) {
  return png::ChunkReader(source).readSignature();
}

MaybeError copyPng(QIODevice& source, const QString& targetPath, const QByteArray& address) {
  auto target = PartFile::create(targetPath);
  if (!target) return target.error();
  if (auto error = copyChunks(source, **target, address)) return error;
  return (*target)->commit();
}

}  // namespace imaging
