#pragma once

#include <QByteArray>
#include <vector>

#include "platform/imaging/DeflateBlocks.h"
#include "platform/imaging/PartFile.h"
#include "platform/imaging/PictureWriter.h"
#include "platform/imaging/RowFilter.h"

namespace imaging {

/// Writes PNG files in strips that can be taken out whole (PictureStrips.h). Text and flat grounds
/// pack as small as the page engine's own pictures, in a fraction of the time.
class PngWriter : public PictureWriter {
 public:
  static Result<std::unique_ptr<PictureWriter>> create(const QString& path, QSize devicePixels,
                                                       const PictureOptions& options);

  MaybeError append(const QImage& rows) override;
  MaybeError finish() override;

 private:
  struct Strip {
    quint32 rows = 0;
    quint32 adler = 1;
  };

  PngWriter(std::unique_ptr<PartFile> file, QSize devicePixels);
  MaybeError writeHead(const PictureOptions& options);
  MaybeError appendRows(const QImage& rows);
  void filterRow(const uchar* row);
  MaybeError endStrip();
  MaybeError writeTail();

  std::unique_ptr<PartFile> file_;
  QSize pixels_;
  int rowsDone_ = 0;
  int rowsPerStrip_;
  RowFilter filter_;
  DeflateBlocks packer_;
  /// The rows of the strip that has begun.
  QByteArray filtered_;
  std::vector<Strip> strips_;
  quint32 adler_ = 1;
  MaybeError failure_;
};

}  // namespace imaging
