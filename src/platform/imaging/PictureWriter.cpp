#include "platform/imaging/PictureWriter.h"

#include <QFile>
#include <QFileInfo>

#include "platform/base/Identifier.h"
#include "platform/imaging/BmpWriter.h"
#include "platform/imaging/PictureConversion.h"
#include "platform/imaging/PngWriter.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

/// For encoders that draw their rows themselves: the rows are kept in a PNG file beside the target
/// until all are there. Packing them costs less than the encoders' own work, and no encoder has to
/// wait on a thread of its own.
class ConvertingWriter : public PictureWriter {
 public:
  static Result<std::unique_ptr<PictureWriter>> create(const QString& path, QSize devicePixels,
                                                       BitmapFileType type,
                                                       const PictureOptions& options) {
    const QString kept =
        QFileInfo(path).path() + u"/.corvalis-"_s + newUniversallyUniqueIdentifier();
    auto rows = PngWriter::create(kept, devicePixels, {1, options.pixelsPerPoint, {}});
    if (!rows) return tl::unexpected(naming(path, kept, rows.error()));
    return std::unique_ptr<PictureWriter>(
        new ConvertingWriter(path, kept, type, options, std::move(*rows)));
  }

  ~ConvertingWriter() override { QFile::remove(kept_); }

  MaybeError append(const QImage& rows) override {
    const auto error = rows_->append(rows);
    return error ? naming(path_, kept_, *error) : error;
  }

  MaybeError finish() override {
    if (auto error = rows_->finish()) return naming(path_, kept_, *error);
    return convertPicture(kept_, path_, type_, options_.compression, options_.metadata);
  }

 private:
  ConvertingWriter(QString path, QString kept, BitmapFileType type, const PictureOptions& options,
                   std::unique_ptr<PictureWriter> rows)
      : path_(std::move(path)),
        kept_(std::move(kept)),
        type_(type),
        options_(options),
        rows_(std::move(rows)) {}

  /// The user knows the file by the name that it is going to have.
  static Error naming(const QString& path, const QString& kept, Error error) {
    error.localizedDescription.replace(QFileInfo(kept).fileName(), QFileInfo(path).fileName());
    return error;
  }

  QString path_;
  QString kept_;
  BitmapFileType type_;
  PictureOptions options_;
  std::unique_ptr<PictureWriter> rows_;
};

}  // namespace

Result<std::unique_ptr<PictureWriter>> PictureWriter::create(const QString& path,
                                                             QSize devicePixels,
                                                             BitmapFileType type,
                                                             const PictureOptions& options) {
  if (auto error = sizeError(type, devicePixels)) return tl::unexpected(*error);
  if (type == BitmapFileType::PNG) return PngWriter::create(path, devicePixels, options);
  if (type == BitmapFileType::BMP) return BmpWriter::create(path, devicePixels, options);
  return ConvertingWriter::create(path, devicePixels, type, options);
}

}  // namespace imaging
