#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <memory>

#include "platform/base/Error.h"

struct spng_ctx;

namespace imaging {

/// Reads a PNG file in memory from its top to its end, a few rows at a time. Transparency is
/// ignored, which suits pictures that have none. One thread at a time, any thread.
class PngReader {
 public:
  /// An error when the bytes are no PNG file.
  static Result<std::unique_ptr<PngReader>> create(QByteArray png);

  /// Device pixels.
  QSize size() const { return size_; }
  int rowsLeft() const { return size_.height() - rowsRead_; }

  /// The next rows, `count` or what is left of them, as QImage::Format_RGB888.
  Result<QImage> rows(int count);

 private:
  struct Free {
    void operator()(spng_ctx* context) const;
  };

  explicit PngReader(QByteArray png);
  MaybeError begin();

  const QByteArray png_;
  std::unique_ptr<spng_ctx, Free> context_;
  QSize size_;
  int rowsRead_ = 0;
};

}  // namespace imaging
