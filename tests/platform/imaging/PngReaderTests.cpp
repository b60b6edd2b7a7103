#include "platform/imaging/PngReader.h"

#include <QBuffer>

#include "TestPictures.h"

namespace imaging {
namespace {

using namespace Qt::StringLiterals;

QByteArray asPng(const QImage& picture) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  picture.save(&buffer, "PNG");
  return bytes;
}

/// All rows, in bands of uneven height; null after an error.
QImage read(const QByteArray& png) {
  const auto reader = PngReader::create(png);
  if (!reader) return {};
  QImage whole((*reader)->size(), QImage::Format_RGB888);
  for (int row = 0, count = 1; row < whole.height(); count = count * 2 + 1) {
    const Result<QImage> band = (*reader)->rows(count);
    if (!band) return {};
    for (int y = 0; y < band->height(); ++y)
      std::copy_n(band->constScanLine(y), whole.width() * 3, whole.scanLine(row++));
  }
  EXPECT_EQ((*reader)->rowsLeft(), 0);
  return whole;
}

TEST(PngReader, EveryRowIsAsItWas) {
  // Noise, letters and slopes: a writer that picks its filters uses all of them.
  QImage picture = pageLike({301, 700}).convertToFormat(QImage::Format_RGB888);
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < picture.width(); ++x)
      picture.setPixelColor(x, y, QColor(x % 256, (x + y) % 256, (x * y / 7) % 256));
  }
  EXPECT_EQ(read(asPng(picture)), picture);
  EXPECT_EQ(read(asPng(picture.convertToFormat(QImage::Format_RGBA8888))), picture);
  const QImage dot = picture.copy(5, 5, 1, 1);
  EXPECT_EQ(read(asPng(dot)), dot);
}

/// A band for each row: its end falls anywhere in the packed data, also on their last bits.
TEST(PngReader, BandsMayEndAnywhere) {
  for (int height = 1; height < 120; ++height) {
    QImage picture(40, height, QImage::Format_RGB888);
    picture.fill(Qt::white);
    picture.setPixelColor(height % 40, height / 2, Qt::red);
    const auto reader = PngReader::create(asPng(picture));
    ASSERT_TRUE(reader);
    for (int row = 0; row < height; ++row)
      ASSERT_TRUE((*reader)->rows(1)) << "row " << row << " of " << height;
  }
}

TEST(PngReader, DamagedPicturesAreErrors) {
  const QByteArray whole = asPng(pageLike({200, 150}).convertToFormat(QImage::Format_RGB888));
  ASSERT_FALSE(read(whole).isNull());
  for (const double part : {0.0, 0.001, 0.003, 0.3, 0.9, 0.999}) {
    EXPECT_TRUE(read(whole.first(qsizetype(double(whole.size()) * part))).isNull()) << part;
  }
  int found = 0;
  for (qsizetype at = 60; at < whole.size() - 40; at += 97) {
    QByteArray damaged = whole;
    damaged[at] = char(damaged[at] ^ 0x24);
    found += read(damaged).isNull();
  }
  EXPECT_GT(found, (whole.size() - 100) / 97 - 5) << "but for the chunks that are not read";
}

TEST(PngReader, OtherKindsOfPicturesAreErrors) {
  const QImage picture = pageLike({20, 20});
  const QImage::Format others[] = {QImage::Format_Indexed8, QImage::Format_Grayscale8,
                                   QImage::Format_RGBX64, QImage::Format_Mono};
  for (const QImage::Format format : others)
    EXPECT_FALSE(PngReader::create(asPng(picture.convertToFormat(format)))) << format;
  EXPECT_FALSE(PngReader::create("no picture"));
  QByteArray huge = asPng(picture.convertToFormat(QImage::Format_RGB888));
  huge.replace(16, 8, QByteArray("\xff\xff\xff\xff\xff\xff\xff\xff", 8));
  EXPECT_FALSE(PngReader::create(huge));
}

}  // namespace
}  // namespace imaging
