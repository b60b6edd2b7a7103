#include "platform/imaging/BitmapFormat.h"

#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <array>

#include "platform/imaging/ImagingError.h"

namespace imaging {

using namespace Qt::StringLiterals;

std::span<const BitmapFormat> bitmapFormats() {
  using enum BitmapFileType;
  using enum CompressionFactor;
  // JPEG's own limit is 65,535; the library at hand stops 35 rows earlier.
  static const std::array<BitmapFormat, 6> formats{{
      {TIFF, u"TIFF"_s, u"tiff"_s, u"image/tiff"_s, Ignored, 0, AddressPlace::ImageDescription},
      {BMP, u"BMP"_s, u"bmp"_s, u"image/bmp"_s, Ignored, 0, AddressPlace::None},
      {GIF, u"GIF"_s, u"gif"_s, u"image/gif"_s, Ignored, 65'535, AddressPlace::Comment},
      {JPEG, u"JPEG"_s, u"jpg"_s, u"image/jpeg"_s, Used, 65'500, AddressPlace::XmpPacket},
      {PNG, u"PNG"_s, u"png"_s, u"image/png"_s, Ignored, 0, AddressPlace::TextChunk},
      {JPEG2000, u"JPEG 2000"_s, u"jp2"_s, u"image/jp2"_s, Used, 0, AddressPlace::XmpBox},
  }};
  return formats;
}

const BitmapFormat& bitmapFormat(BitmapFileType type) {
  return *std::ranges::find(bitmapFormats(), type, &BitmapFormat::type);
}

BitmapFileType bitmapFileTypeWithCode(unsigned code) {
  return code <= unsigned(BitmapFileType::JPEG2000) ? BitmapFileType(code) : BitmapFileType::PNG;
}

namespace {

QString namesOfUnlimitedFormats() {
  QStringList names;
  for (const BitmapFormat& format : bitmapFormats()) {
    if (!format.longestSide) names << format.name;
  }
  const QString last = names.takeLast();
  return names.join(u", "_s) + u" and "_s + last;
}

/// The format counts its own bytes in 32 bits.
bool outgrowsBmp(QSize pixels) {
  return (qint64(pixels.width()) * 3 + 4) * pixels.height() > 0xffff'0000LL;
}

}  // namespace

MaybeError sizeError(BitmapFileType type, QSize pixels) {
  if (pixels.isEmpty()) return imagingError(ImagingError::NoPicture, u"The picture is empty."_s);
  const BitmapFormat& format = bitmapFormat(type);
  const QLocale locale(QLocale::English);
  const int side = std::max(pixels.width(), pixels.height());
  if (format.longestSide && side > format.longestSide) {
    const QString unit = pixels.height() > format.longestSide ? u"rows"_s : u"columns"_s;
    return imagingError(
        ImagingError::TooLarge,
        u"A %1 file holds at most %2 %3, and this picture has %4. %5 hold pictures of that size."_s
            .arg(format.name, locale.toString(format.longestSide), unit, locale.toString(side),
                 namesOfUnlimitedFormats()));
  }
  if (type == BitmapFileType::BMP && outgrowsBmp(pixels)) {
    return imagingError(
        ImagingError::TooLarge,
        u"A BMP file holds at most 4 GB of pixels. PNG and TIFF hold larger pictures."_s);
  }
  return {};
}

}  // namespace imaging
