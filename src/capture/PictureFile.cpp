#include "capture/PictureFile.h"

#include "capture/CaptureError.h"

PictureFile::PictureFile(QString path, imaging::BitmapFileType finalType,
                         imaging::PictureOptions options)
    : path_(std::move(path)), finalType_(finalType), options_(std::move(options)) {}

MaybeError PictureFile::began(QSize devicePixels) {
  if (const MaybeError refused = imaging::sizeError(finalType_, devicePixels)) return refused;
  writer_.reset();
  auto writer =
      imaging::PictureWriter::create(path_, devicePixels, imaging::BitmapFileType::PNG, options_);
  if (!writer) return writer.error();
  writer_ = std::move(*writer);
  return std::nullopt;
}

MaybeError PictureFile::rows(const QImage& strip) {
  return writer_->append(strip);
}

MaybeError PictureFile::finish() {
  if (!writer_)
    return capture::makeError(capture::NoResult, QStringLiteral("The page gave no picture."));
  return writer_->finish();
}
