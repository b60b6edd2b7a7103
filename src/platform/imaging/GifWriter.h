#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <memory>
#include <optional>

#include "platform/base/Error.h"
#include "platform/imaging/ColourCensus.h"
#include "platform/imaging/PaletteMapper.h"
#include "platform/imaging/PartFile.h"

struct GifFileType;

namespace imaging {

/// Writes GIF files row by row. The palette stands before the pixels, so each row comes twice: all
/// of them go to `count` first, then all of them again to `append`. Memory does not grow with the
/// height. The file appears whole or not at all. One thread at a time, any thread.
class GifWriter {
 public:
  static Result<std::unique_ptr<GifWriter>> create(const QString& path, QSize devicePixels);
  GifWriter(const GifWriter&) = delete;
  GifWriter& operator=(const GifWriter&) = delete;

  /// Rows as QImage::Format_RGB888, as wide as the picture.
  void count(const QImage& rows);
  MaybeError append(const QImage& rows);
  /// To be called when all rows have been appended. An empty address is none.
  MaybeError finish(const QByteArray& address);

 private:
  struct Close {
    void operator()(GifFileType* gif) const;
  };

  GifWriter(std::unique_ptr<PartFile> file, QSize devicePixels);
  MaybeError begin();
  MaybeError writeHeader(const Palette& palette);
  MaybeError flush();
  /// What went wrong with the file, or, as that is all that is left, with the memory.
  Error failure() const;
  static int onWrite(GifFileType* gif, const uchar* bytes, int length);

  std::unique_ptr<PartFile> file_;
  const QSize pixels_;
  /// Until the first row is appended.
  std::optional<ColourCensus> census_;
  std::optional<PaletteMapper> mapper_;
  std::vector<uchar> indices_;
  QByteArray pending_;
  MaybeError writeFailure_;
  /// Writes when it is closed, so it goes first.
  std::unique_ptr<GifFileType, Close> gif_;
};

}  // namespace imaging
