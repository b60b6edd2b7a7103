#include "platform/imaging/EncodedPicture.h"

#include <QFile>
#include <algorithm>
#include <cmath>

#include "platform/imaging/AddressMark.h"
#include "platform/imaging/GifWriter.h"
#include "platform/imaging/ImagingError.h"
#include "platform/imaging/PartFile.h"
#include "platform/imaging/VipsFileTarget.h"
#include "platform/imaging/VipsLibrary.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

using Picture = VipsOwned<VipsImage>;

Error unreadable(const VipsLibrary& vips) {
  return imagingError(
      ImagingError::CannotRead,
      u"The picture is damaged or of an unknown kind (%1)."_s.arg(vips.takeError()));
}

Error changedWhileRead() {
  return imagingError(ImagingError::CannotRead, u"The picture changed while it was read."_s);
}

Result<Picture> open(const VipsLibrary& vips, const PictureSource& from) {
  const VipsOwned<VipsSource> source(
      from.path.isEmpty()
          ? vips.vips_source_new_from_memory(from.bytes.data(), size_t(from.bytes.size()))
          : vips.vips_source_new_from_file(QFile::encodeName(from.path).constData()));
  if (!source) return tl::unexpected(unreadable(vips));
  Picture picture(vips.vips_image_new_from_source(
      source.get(), "", "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", VIPS_FAIL_ON_ERROR, nullptr));
  if (!picture) return tl::unexpected(unreadable(vips));
  return picture;
}

/// One step of a picture's way: `operation` takes the picture and gives a new one.
template <class Operation>
bool apply(Picture& picture, Operation operation) {
  VipsImage* next = nullptr;
  if (operation(picture.get(), &next) != 0) return false;
  picture.reset(next);
  return true;
}

bool toSrgb(const VipsLibrary& vips, Picture& picture) {
  return apply(picture, [&](VipsImage* in, VipsImage** out) {
    if (vips.vips_image_get_typeof(in, VIPS_META_ICC_NAME)) {
      return vips.vips_icc_transform(in, out, "srgb", "embedded", TRUE, nullptr);
    }
    return vips.vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
  });
}

bool layOnWhite(const VipsLibrary& vips, Picture& picture) {
  if (!vips.vips_image_hasalpha(picture.get())) return true;
  VipsArrayDouble* white = vips.vips_array_double_newv(3, 255.0, 255.0, 255.0);
  const bool done = apply(picture, [&](VipsImage* in, VipsImage** out) {
    return vips.vips_flatten(in, out, "background", white, nullptr);
  });
  vips.vips_area_unref(VIPS_AREA(white));
  return done;
}

/// Red, green and blue with 8 bits each, without what the source says about itself.
bool toPlainPixels(const VipsLibrary& vips, Picture& picture) {
  if (!toSrgb(vips, picture) || !layOnWhite(vips, picture)) return false;
  const bool copied = apply(
      picture, [&](VipsImage* in, VipsImage** out) { return vips.vips_copy(in, out, nullptr); });
  for (const char* name : {VIPS_META_EXIF_NAME, VIPS_META_XMP_NAME, VIPS_META_IPTC_NAME,
                           VIPS_META_ICC_NAME, VIPS_META_ORIENTATION, VIPS_META_IMAGEDESCRIPTION}) {
    if (copied) vips.vips_image_remove(picture.get(), name);
  }
  return copied;
}

void describe(const VipsLibrary& vips, VipsImage* picture, AddressPlace place,
              const QByteArray& address) {
  if (address.isEmpty()) return;
  if (place == AddressPlace::ImageDescription) {
    vips.vips_image_set_string(picture, VIPS_META_IMAGEDESCRIPTION, address.constData());
  }
  if (place == AddressPlace::XmpPacket || place == AddressPlace::ImageDescription) {
    const QByteArray packet = xmpPacket(address);
    vips.vips_image_set_blob_copy(picture, VIPS_META_XMP_NAME, packet.constData(),
                                  size_t(packet.size()));
  }
}

/// The extension chooses the encoder; its settings follow in brackets.
QByteArray encoderText(BitmapFileType type, float compression, const VipsImage* picture) {
  const double factor =
      std::isfinite(compression) ? std::clamp(double(compression), 0.0, 1.0) : 1.0;
  switch (type) {
    case BitmapFileType::JPEG:
      return ".jpg[Q=%1,profile=srgb]"_ba.replace(
          "%1", QByteArray::number(std::lround(10 + 90 * factor)));
    case BitmapFileType::JPEG2000:
      // The number is the nearness to the original in decibels. From about 50 on, pages of text
      // would take more bytes than the exact picture.
      if (factor >= 1) return ".jp2[lossless=true]";
      return ".jp2[Q=%1]"_ba.replace("%1", QByteArray::number(std::lround(32 + 16 * factor)));
    default: {
      // Plain TIFF counts its bytes in 32 bits, and packed rows may turn out larger than they were.
      const bool large = qint64(picture->Xsize) * picture->Ysize * 3 > 2'000'000'000;
      return ".tiff[compression=lzw,predictor=horizontal,profile=srgb,bigtiff="_ba +
             (large ? "true]" : "false]");
    }
  }
}

MaybeError encode(const VipsLibrary& vips, VipsImage* picture, const QString& targetPath,
                  const BitmapFormat& format, float compression, const QByteArray& address) {
  auto file = PartFile::create(targetPath);
  if (!file) return file.error();
  const VipsFileTarget target(vips, **file, picture);
  const QByteArray encoder = encoderText(format.type, compression, picture);
  const int result =
      vips.vips_image_write_to_target(picture, encoder.constData(), target.target(), nullptr);
  if (target.failure()) {
    vips.takeError();
    return target.failure();
  }
  // The encoders' only other trouble is with the rows that come from the source.
  if (result != 0) return unreadable(vips);
  if (auto error = appendAddress(**file, format.addressPlace, address)) return error;
  return (*file)->commit();
}

/// Gives all rows to `take`, some at a time as QImage::Format_RGB888, until it says that something
/// is wrong.
template <class Take>
MaybeError forEachRows(const VipsLibrary& vips, VipsImage* picture, Take take) {
  const QSize pixels(picture->Xsize, picture->Ysize);
  const VipsOwned<VipsRegion> region(vips.vips_region_new(picture));
  constexpr int rowsAtOnce = 128;
  for (int row = 0; row < pixels.height(); row += rowsAtOnce) {
    const VipsRect place{0, row, pixels.width(), std::min(rowsAtOnce, pixels.height() - row)};
    if (!region || vips.vips_region_prepare(region.get(), &place) != 0) return unreadable(vips);
    const uchar* first = region->data + qptrdiff(row - region->valid.top) * region->bpl;
    const QImage rows(first, pixels.width(), place.height, region->bpl, QImage::Format_RGB888);
    if (MaybeError error = take(rows)) return error;
  }
  return {};
}

/// For the formats that have a writer of our own.
MaybeError writeRows(const VipsLibrary& vips, VipsImage* picture, const QString& targetPath,
                     BitmapFileType type, const PictureOptions& options) {
  auto writer = PictureWriter::create(targetPath, {picture->Xsize, picture->Ysize}, type, options);
  if (!writer) return writer.error();
  const auto append = [&](const QImage& rows) { return (*writer)->append(rows); };
  if (auto error = forEachRows(vips, picture, append)) return error;
  return (*writer)->finish();
}

/// Rows can be read once from a picture, so the second time they come from another one.
MaybeError writeGif(const VipsLibrary& vips, Picture picture, const PictureSource& source,
                    const QString& targetPath, const QByteArray& address) {
  const QSize pixels(picture->Xsize, picture->Ysize);
  auto writer = GifWriter::create(targetPath, pixels);
  if (!writer) return writer.error();
  const auto count = [&](const QImage& rows) {
    (*writer)->count(rows);
    return MaybeError();
  };
  if (auto error = forEachRows(vips, picture.get(), count)) return error;
  picture.reset();
  auto again = open(vips, source);
  if (!again) return again.error();
  if (!toPlainPixels(vips, *again)) return unreadable(vips);
  if (QSize((*again)->Xsize, (*again)->Ysize) != pixels) return changedWhileRead();
  const auto append = [&](const QImage& rows) { return (*writer)->append(rows); };
  if (auto error = forEachRows(vips, again->get(), append)) return error;
  return (*writer)->finish(address);
}

/// The library keeps a little memory for each thread that has called it.
struct ThreadShutdown {
  const VipsLibrary& vips;
  ~ThreadShutdown() { vips.vips_thread_shutdown(); }
};

}  // namespace

MaybeError encodePicture(const PictureSource& source, const QString& targetPath,
                         BitmapFileType type, float compression, const PictureMetadata& metadata) {
  const auto library = VipsLibrary::shared();
  if (!library) return library.error();
  const VipsLibrary& vips = **library;
  const ThreadShutdown shutdown{vips};
  auto picture = open(vips, source);
  if (!picture) return picture.error();
  const QSize pixels((*picture)->Xsize, (*picture)->Ysize);
  if (auto error = sizeError(type, pixels)) return error;
  if (!toPlainPixels(vips, *picture)) return unreadable(vips);
  const BitmapFormat& format = bitmapFormat(type);
  if (type == BitmapFileType::BMP || type == BitmapFileType::PNG) {
    // The library counts in pixels per millimetre.
    const PictureOptions options{compression, (*picture)->Xres * 25.4 / 72, metadata};
    return writeRows(vips, picture->get(), targetPath, type, options);
  }
  const QByteArray address = addressToKeep(metadata);
  if (type == BitmapFileType::GIF) {
    return writeGif(vips, std::move(*picture), source, targetPath, address);
  }
  describe(vips, picture->get(), format.addressPlace, address);
  return encode(vips, picture->get(), targetPath, format, compression, address);
}

}  // namespace imaging
