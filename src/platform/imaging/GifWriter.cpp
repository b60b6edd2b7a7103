#include "platform/imaging/GifWriter.h"

#include <gif_lib.h>

#include <bit>

#include "platform/imaging/AddressMark.h"
#include "platform/imaging/PixelRows.h"

namespace imaging {

namespace {

/// The encoder hands out its bytes in blocks of 255.
constexpr qsizetype pendingBytes = 64 * 1024;

struct FreeColourMap {
  void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};
using ColourMap = std::unique_ptr<ColorMapObject, FreeColourMap>;

/// The format's palettes have a power of two of colours; those too many stay black and unused.
ColourMap colourMapOf(const Palette& palette) {
  const size_t places = std::bit_ceil(std::max<size_t>(2, palette.colours.size()));
  ColourMap map(GifMakeMapObject(int(places), nullptr));
  if (!map) return map;
  for (size_t index = 0; index < palette.colours.size(); ++index) {
    const QRgb colour = palette.colours[index];
    map->Colors[index] = {uchar(qRed(colour)), uchar(qGreen(colour)), uchar(qBlue(colour))};
  }
  return map;
}

}  // namespace

void GifWriter::Close::operator()(GifFileType* gif) const {
  EGifCloseFile(gif, nullptr);
}

Result<std::unique_ptr<GifWriter>> GifWriter::create(const QString& path, QSize devicePixels) {
  auto file = PartFile::create(path);
  if (!file) return tl::unexpected(file.error());
  return std::unique_ptr<GifWriter>(new GifWriter(std::move(*file), devicePixels));
}

GifWriter::GifWriter(std::unique_ptr<PartFile> file, QSize devicePixels)
    : file_(std::move(file)),
      pixels_(devicePixels),
      census_(std::in_place),
      indices_(size_t(devicePixels.width())) {}

void GifWriter::count(const QImage& rows) {
  for (int row = 0; row < rows.height(); ++row)
    census_->addRow(rows.constScanLine(row), pixels_.width());
}

MaybeError GifWriter::append(const QImage& rows) {
  if (!gif_) {
    if (auto error = begin()) return error;
  }
  for (int row = 0; row < rows.height(); ++row) {
    mapper_->mapRow(rows.constScanLine(row), indices_.data());
    if (EGifPutLine(gif_.get(), indices_.data(), pixels_.width()) != GIF_OK) return failure();
  }
  return {};
}

MaybeError GifWriter::begin() {
  Palette palette = paletteFor(*census_);
  census_.reset();
  gif_.reset(EGifOpen(this, onWrite, nullptr));
  if (!gif_) return failure();
  if (auto error = writeHeader(palette)) return error;
  mapper_.emplace(std::move(palette), pixels_.width());
  return {};
}

MaybeError GifWriter::writeHeader(const Palette& palette) {
  const ColourMap map = colourMapOf(palette);
  if (!map) return failure();
  EGifSetGifVersion(gif_.get(), true);
  const bool written =
      EGifPutScreenDesc(gif_.get(), pixels_.width(), pixels_.height(), 8, 0, map.get()) == GIF_OK &&
      EGifPutImageDesc(gif_.get(), 0, 0, pixels_.width(), pixels_.height(), false, nullptr) ==
          GIF_OK;
  if (!written) return failure();
  return {};
}

MaybeError GifWriter::finish(const QByteArray& address) {
  gif_.reset();
  if (auto error = flush()) return error;
  if (auto error = appendAddress(*file_, AddressPlace::Comment, address)) return error;
  return file_->commit();
}

MaybeError GifWriter::flush() {
  if (!writeFailure_) writeFailure_ = file_->write(pending_);
  pending_.resize(0);
  return writeFailure_;
}

Error GifWriter::failure() const {
  return writeFailure_.value_or(noMemoryForRows());
}

int GifWriter::onWrite(GifFileType* gif, const uchar* bytes, int length) {
  auto* self = static_cast<GifWriter*>(gif->UserData);
  self->pending_.append(reinterpret_cast<const char*>(bytes), length);
  if (self->pending_.size() >= pendingBytes && self->flush()) return 0;
  return length;
}

}  // namespace imaging
