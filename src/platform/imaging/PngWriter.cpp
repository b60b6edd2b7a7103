#include "platform/imaging/PngWriter.h"

#include <isa-l/igzip_lib.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>

#include "platform/imaging/AddressMark.h"
#include "platform/imaging/PictureStrips.h"
#include "platform/imaging/PixelRows.h"
#include "platform/imaging/PngChunks.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

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
      filter_(devicePixels.width()) {}

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
    const bool stripEnds = rowsDone_ % rowsPerStrip_ == 0 || rowsDone_ == pixels_.height();
    if (!stripEnds) continue;
    if (auto error = endStrip()) return error;
  }
  return {};
}

void PngWriter::filterRow(const uchar* row) {
  if (filtered_.isEmpty()) filtered_.reserve(rowsPerStrip_ * qsizetype(filter_.filteredSize()));
  const qsizetype end = filtered_.size();
  filtered_.resize(end + qsizetype(filter_.filteredSize()));
  filter_.filter(row, reinterpret_cast<uchar*>(filtered_.data() + end));
  ++rowsDone_;
}

MaybeError PngWriter::endStrip() {
  const QByteArray packed = packer_.pack(filtered_);
  if (packed.isEmpty()) return noMemoryForRows();
  const qsizetype size = filtered_.size();
  const quint32 rows = quint32(size / qsizetype(filter_.filteredSize()));
  const quint32 adler =
      isal_adler32(1, reinterpret_cast<const uchar*>(filtered_.constData()), quint64(size));
  adler_ = quint32(adler32_combine(adler_, adler, size));
  strips_.push_back({rows, adler});
  filtered_.resize(0);
  filter_.startAfresh();
  return png::writeChunk(*file_, "IDAT", packed);
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
    table += png::bigEndian(strip.rows) + png::bigEndian(strip.adler);
  }
  if (auto error = png::writeChunk(*file_, png::stripsChunk, table)) return error;
  if (auto error = png::writeChunk(*file_, "IEND", {})) return error;
  return file_->commit();
}

}  // namespace imaging
