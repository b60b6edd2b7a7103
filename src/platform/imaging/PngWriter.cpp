#include "platform/imaging/PngWriter.h"

#include <algorithm>
#include <cmath>

#include "platform/imaging/AddressMark.h"
#include "platform/imaging/PictureStrips.h"
#include "platform/imaging/PixelRows.h"
#include "platform/imaging/PngChunks.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype filteredLimit = 256 * 1024;

/// Large enough that a PDF of a tall page has few pictures, small enough that who unpacks one
/// strip needs no more than 16 MB.
int rowsPerStrip(int width) {
  return std::clamp(16 * 1024 * 1024 / (width * 3 + 1), 64, 4096);
}

QByteArray imageHeader(QSize pixels) {
  // 8 bits a channel, red green blue, and the only compression, filtering and order there are.
  return png::bigEndian(quint32(pixels.width())) + png::bigEndian(quint32(pixels.height())) +
         QByteArray("\x08\x02\x00\x00\x00", 5);
}

QByteArray physicalSize(double pixelsPerPoint) {
  const QByteArray perMetre = png::bigEndian(quint32(std::lround(72 * pixelsPerPoint / 0.0254)));
  return perMetre + perMetre + '\x01';
}

}  // namespace

Result<std::unique_ptr<PictureWriter>> PngWriter::create(const QString& path, QSize devicePixels,
                                                         const PictureOptions& options) {
  auto file = PartFile::create(path);
  if (!file) return tl::unexpected(file.error());
  std::unique_ptr<PngWriter> writer(new PngWriter(std::move(*file), devicePixels));
  if (auto error = writer->writeHead(options)) return tl::unexpected(*error);
  return writer;
}

PngWriter::PngWriter(std::unique_ptr<PartFile> file, QSize devicePixels)
    : file_(std::move(file)),
      pixels_(devicePixels),
      rowsPerStrip_(rowsPerStrip(devicePixels.width())),
      filter_(devicePixels.width()),
      packer_([this](const QByteArray& packed) { return writePacked(packed); }) {}

MaybeError PngWriter::writeHead(const PictureOptions& options) {
  if (auto error = file_->write({png::signature, sizeof png::signature})) return error;
  if (auto error = png::writeChunk(*file_, "IHDR", imageHeader(pixels_))) return error;
  if (auto error = png::writeChunk(*file_, "sRGB", QByteArray(1, '\0'))) return error;
  // For readers that know no sRGB chunk: the gamma that the standard gives for it.
  if (auto error = png::writeChunk(*file_, "gAMA", png::bigEndian(45'455))) return error;
  if (auto error = png::writeChunk(*file_, "pHYs", physicalSize(options.pixelsPerPoint)))
    return error;
  if (const QByteArray address = addressToKeep(options.metadata); !address.isEmpty()) {
    if (auto error = png::writeChunk(*file_, "iTXt", png::sourceText(address))) return error;
  }
  return png::writeChunk(*file_, "IDAT", {PictureStrips::streamHeader, 2});
}

MaybeError PngWriter::append(const QImage& rows) {
  if (!failure_) failure_ = appendRows(rows);
  return failure_;
}

MaybeError PngWriter::appendRows(const QImage& rows) {
  if (auto error = rowsError(rows, pixels_, rowsDone_)) return error;
  const QImage opaque = opaqueRows(rows, QImage::Format_RGB888);
  if (opaque.isNull()) return noMemoryForRows();
  for (int row = 0; row < opaque.height(); ++row) {
    filterRow(opaque.constScanLine(row));
    const bool stripEnds = int(strip_.rows) == rowsPerStrip_ || rowsDone_ == pixels_.height();
    if (filtered_.size() < filteredLimit && !stripEnds) continue;
    if (auto error = stripEnds ? endStrip() : packFiltered(DeflateStream::Boundary::None))
      return error;
  }
  return {};
}

void PngWriter::filterRow(const uchar* row) {
  const qsizetype end = filtered_.size();
  filtered_.resize(end + qsizetype(filter_.filteredSize()));
  const FilteredRow kind = filter_.filter(row, reinterpret_cast<uchar*>(filtered_.data() + end));
  if (kind == FilteredRow::Differences) ++rowsOfDifferences_;
  ++rowsDone_;
  ++strip_.rows;
}

MaybeError PngWriter::packFiltered(DeflateStream::Boundary boundary) {
  const auto* bytes = reinterpret_cast<const Bytef*>(filtered_.constData());
  strip_.adler = quint32(adler32_z(strip_.adler, bytes, size_t(filtered_.size())));
  const qsizetype rows = filtered_.size() / qsizetype(filter_.filteredSize());
  const auto content = rowsOfDifferences_ * 2 > rows ? DeflateStream::Content::Differences
                                                     : DeflateStream::Content::Text;
  auto error = packer_.pack(filtered_, content, boundary);
  filtered_.resize(0);
  rowsOfDifferences_ = 0;
  return error;
}

MaybeError PngWriter::writePacked(const QByteArray& packed) {
  ++strip_.chunks;
  return png::writeChunk(*file_, "IDAT", packed);
}

MaybeError PngWriter::endStrip() {
  const qsizetype size = qsizetype(strip_.rows) * qsizetype(filter_.filteredSize());
  if (auto error = packFiltered(DeflateStream::Boundary::Independent)) return error;
  adler_ = quint32(adler32_combine(adler_, strip_.adler, size));
  strips_.push_back(std::exchange(strip_, {}));
  filter_.startAfresh();
  return {};
}

MaybeError PngWriter::finish() {
  if (!failure_) failure_ = writeTail();
  return failure_;
}

MaybeError PngWriter::writeTail() {
  if (auto error = missingRowsError(pixels_, rowsDone_)) return error;
  const QByteArray end = QByteArray(PictureStrips::lastBlock, 2) + png::bigEndian(adler_);
  if (auto error = png::writeChunk(*file_, "IDAT", end)) return error;
  QByteArray table;
  for (const Strip& strip : strips_) {
    table +=
        png::bigEndian(strip.rows) + png::bigEndian(strip.chunks) + png::bigEndian(strip.adler);
  }
  if (auto error = png::writeChunk(*file_, png::stripsChunk, table)) return error;
  if (auto error = png::writeChunk(*file_, "IEND", {})) return error;
  return file_->commit();
}

}  // namespace imaging
