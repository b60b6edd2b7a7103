#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <memory>
#include <optional>

#include "platform/base/Error.h"
#include "platform/imaging/BitmapFormat.h"

namespace imaging {

/// What a picture file says about its picture.
struct PictureMetadata {
  /// Kept where the format has a place for it (`BitmapFormat::addressPlace`).
  std::optional<QString> address;
};

struct PictureOptions {
  /// 0.0 smallest file to 1.0 best picture; for the formats that use it.
  float compression = 1;
  /// Device pixels per point; files say 72 x this as their dots per inch.
  double pixelsPerPoint = 1;
  PictureMetadata metadata;
};

/// Writes a picture file from rows as they arrive, from the top to the bottom; what it holds in
/// memory does not grow with the number of rows. The picture is opaque sRGB with 8 bits a channel.
/// The file appears at its place when `finish` succeeds; a writer that is destroyed before leaves
/// no file. One thread at a time, any thread.
class PictureWriter {
 public:
  /// Refuses sizes that the type cannot hold, before any row is made.
  static Result<std::unique_ptr<PictureWriter>> create(const QString& path, QSize devicePixels,
                                                       BitmapFileType type,
                                                       const PictureOptions& options = {});
  virtual ~PictureWriter() = default;
  PictureWriter(const PictureWriter&) = delete;
  PictureWriter& operator=(const PictureWriter&) = delete;

  /// The next rows, as wide as the picture; transparency is laid on white. Returns when they are
  /// packed. After an error every later call gives the same error.
  virtual MaybeError append(const QImage& rows) = 0;
  /// An error when rows are missing.
  virtual MaybeError finish() = 0;

 protected:
  PictureWriter() = default;
};

}  // namespace imaging
