#pragma once

#include <QString>
#include <memory>

#include "platform/imaging/BitmapFormat.h"
#include "platform/imaging/PictureWriter.h"
#include "platform/rendering/PictureReceiver.h"

/// Writes a page's rows, as they arrive, into the intermediate PNG file. `finalType` is the kind of
/// file that the picture becomes in the end: a page that is too tall for it is refused before it is
/// pictured.
class PictureFile : public rendering::PictureReceiver {
 public:
  PictureFile(QString path, imaging::BitmapFileType finalType, imaging::PictureOptions options);

  MaybeError began(QSize devicePixels) override;
  MaybeError rows(const QImage& strip) override;

  /// The file appears at its path. Called once, after the last rows.
  MaybeError finish();

 private:
  const QString path_;
  const imaging::BitmapFileType finalType_;
  const imaging::PictureOptions options_;
  std::unique_ptr<imaging::PictureWriter> writer_;
};
