#include "platform/imaging/PngReader.h"

#include <spng.h>

#include "platform/imaging/ImagingError.h"
#include "platform/imaging/PixelRows.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

Error unreadable(int code) {
  return imagingError(ImagingError::NoPicture, u"The picture cannot be read: %1."_s.arg(
                                                   QString::fromUtf8(spng_strerror(code))));
}

}  // namespace

void PngReader::Free::operator()(spng_ctx* context) const {
  spng_ctx_free(context);
}

Result<std::unique_ptr<PngReader>> PngReader::create(QByteArray png) {
  std::unique_ptr<PngReader> reader(new PngReader(std::move(png)));
  if (const MaybeError error = reader->begin()) return tl::unexpected(*error);
  return reader;
}

PngReader::PngReader(QByteArray png) : png_(std::move(png)), context_(spng_ctx_new(0)) {}

MaybeError PngReader::begin() {
  if (!context_) return noMemoryForRows();
  int result = spng_set_png_buffer(context_.get(), png_.constData(), size_t(png_.size()));
  spng_ihdr header{};
  if (result == 0) result = spng_get_ihdr(context_.get(), &header);
  if (result == 0) {
    result = spng_decode_image(context_.get(), nullptr, 0, SPNG_FMT_RGB8, SPNG_DECODE_PROGRESSIVE);
  }
  if (result != 0) return unreadable(result);
  size_ = {int(header.width), int(header.height)};
  return {};
}

Result<QImage> PngReader::rows(int count) {
  QImage rows(size_.width(), qMin(count, rowsLeft()), QImage::Format_RGB888);
  if (rows.isNull()) return tl::unexpected(noMemoryForRows());
  for (int row = 0; row < rows.height(); ++row) {
    const int result =
        spng_decode_row(context_.get(), rows.scanLine(row), size_t(size_.width()) * 3);
    const bool read = result == 0 || (result == SPNG_EOI && rowsLeft() == 1);
    if (!read) return tl::unexpected(unreadable(result));
    ++rowsRead_;
  }
  return rows;
}

}  // namespace imaging
