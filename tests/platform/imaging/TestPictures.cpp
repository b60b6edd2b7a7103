#include "TestPictures.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <random>

namespace imaging {

using namespace Qt::StringLiterals;

QImage pageLike(QSize size) {
  QImage page(size, QImage::Format_RGB32);
  page.fill(Qt::white);
  std::mt19937 random(7);
  for (int y = 0; y < size.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(page.scanLine(y));
    const bool photograph = y >= size.height() / 2;
    for (int x = 0; x < size.width(); ++x) {
      const int noise = int(random() % 24);
      if (photograph) row[x] = qRgb((x / 2 + noise) % 256, (y / 3 + noise) % 256, 90 + noise);
      if (!photograph && y % 16 < 9 && (x * 7 + y / 16) % 11 < 3) row[x] = qRgb(20, 20, 60);
    }
  }
  return page;
}

QImage numberedRows(int width, int first, int rows) {
  QImage picture(width, rows, QImage::Format_RGB32);
  for (int y = 0; y < rows; ++y) {
    const int number = first + y;
    std::fill_n(reinterpret_cast<QRgb*>(picture.scanLine(y)), width,
                qRgb(number >> 16, number >> 8 & 0xff, number & 0xff));
  }
  return picture;
}

int numberOfRow(QRgb pixel) {
  return qRed(pixel) << 16 | qGreen(pixel) << 8 | qBlue(pixel);
}

QImage decoded(const QString& path) {
  QImageReader::setAllocationLimit(0);
  QImageReader reader(path);
  reader.setDecideFormatFromContent(true);
  QImage picture = reader.read();
  if (!picture.isNull()) return picture.convertToFormat(QImage::Format_RGB32);
  const QString png = path + u".decoded"_s;
  if (convertPicture(path, png, BitmapFileType::PNG, 1)) return {};
  picture = QImage(png, "PNG");
  QFile::remove(png);
  return picture.convertToFormat(QImage::Format_RGB32);
}

Difference difference(const QImage& left, const QImage& right) {
  if (left.size() != right.size()) return {255, 255};
  Difference result;
  for (int y = 0; y < left.height(); ++y) {
    for (int x = 0; x < left.width(); ++x) {
      const QRgb a = left.pixel(x, y);
      const QRgb b = right.pixel(x, y);
      for (const int off : {qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b)}) {
        result.largest = std::max(result.largest, std::abs(off));
        result.mean += std::abs(off);
      }
    }
  }
  result.mean /= 3.0 * left.width() * left.height();
  return result;
}

QByteArray bytesOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(bytes), bytes.size());
}

MaybeError writePicture(const QString& path, const QImage& picture, BitmapFileType type,
                        const PictureOptions& options) {
  auto writer = PictureWriter::create(path, picture.size(), type, options);
  if (!writer) return writer.error();
  for (int row = 0, piece = 1; row < picture.height(); row += piece, piece = piece * 2 + 3) {
    piece = std::min(piece, picture.height() - row);
    if (auto error = (*writer)->append(picture.copy(0, row, picture.width(), piece))) return error;
  }
  return (*writer)->finish();
}

QStringList PictureTest::filesInFolder() const {
  return QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden);
}

}  // namespace imaging
