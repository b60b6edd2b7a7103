#pragma once

#include <QByteArray>

#include "platform/imaging/PartFile.h"
#include "platform/imaging/PictureWriter.h"

namespace imaging {

/// Writes BMP files of 24 bits a pixel, tagged sRGB by a version 4 header. The rows of such a file
/// run from the bottom up, as every reader understands, so each lands at its own place in the file.
class BmpWriter : public PictureWriter {
 public:
  static Result<std::unique_ptr<PictureWriter>> create(const QString& path, QSize devicePixels,
                                                       const PictureOptions& options);

  MaybeError append(const QImage& rows) override;
  MaybeError finish() override;

 private:
  BmpWriter(std::unique_ptr<PartFile> file, QSize devicePixels);
  qsizetype bytesPerRow() const { return (qsizetype(pixels_.width()) * 3 + 3) & ~qsizetype(3); }
  QByteArray header(double pixelsPerPoint) const;
  MaybeError appendRows(const QImage& rows);

  std::unique_ptr<PartFile> file_;
  QSize pixels_;
  int rowsDone_ = 0;
  MaybeError failure_;
};

}  // namespace imaging
