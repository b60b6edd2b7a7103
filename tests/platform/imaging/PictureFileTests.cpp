#include "TestPictures.h"

namespace imaging {
namespace {

using namespace Qt::StringLiterals;

struct Expected {
  BitmapFileType type;
  /// Of a channel, on average, at the best compression factor.
  double meanDifference;
  QByteArray signature;
  /// Where the file says that its colours are sRGB.
  QByteArray colourTag;
};

const Expected expectations[] = {
    {BitmapFileType::TIFF, 0, "II*", "sRGB"},
    {BitmapFileType::BMP, 0, "BM", "BGRs"},
    {BitmapFileType::GIF, 12, "GIF89a", {}},
    {BitmapFileType::JPEG, 1, "\xff\xd8\xff", "ICC_PROFILE"},
    {BitmapFileType::PNG, 0, "\x89PNG", "sRGB"},
    // Method 1 (enumerated), precedence, approximation, then 16 for sRGB.
    {BitmapFileType::JPEG2000, 0, {}, QByteArray("colr\x01\0\0\0\0\0\x10", 11)},
};

class PictureFile : public PictureTest {};

TEST_F(PictureFile, holdsThePictureInEveryFormatFromRowsAndFromAnotherFile) {
  const QImage page = pageLike({203, 301});
  const QByteArray address = "http://127.0.0.1/a?b=1&c=%20x";
  const PictureOptions options{1, 2, {QString::fromLatin1(address)}};
  ASSERT_FALSE(writePicture(path(u"source"_s), page, BitmapFileType::PNG));
  for (const Expected& expected : expectations) {
    const BitmapFormat& format = bitmapFormat(expected.type);
    SCOPED_TRACE(format.name.toStdString());
    const QString written = path(u"written."_s + format.extension);
    const QString converted = path(u"converted."_s + format.extension);
    ASSERT_EQ(writePicture(written, page, expected.type, options), MaybeError());
    ASSERT_EQ(convertPictureData(bytesOf(path(u"source"_s)), converted, expected.type, 1,
                                 options.metadata),
              MaybeError());
    for (const QString& file : {written, converted}) {
      const QByteArray bytes = bytesOf(file);
      EXPECT_LE(difference(decoded(file), page).mean, expected.meanDifference);
      EXPECT_TRUE(bytes.startsWith(expected.signature));
      EXPECT_TRUE(bytes.contains(expected.colourTag));
      const bool keepsAddress = format.addressPlace != AddressPlace::None;
      const bool hasAddress =
          bytes.contains(address) || bytes.contains("http://127.0.0.1/a?b=1&amp;c=%20x");
      EXPECT_EQ(hasAddress, keepsAddress);
    }
  }
  EXPECT_EQ(filesInFolder().size(), 13);
}

TEST_F(PictureFile, saysHowDenseItsPixelsAre) {
  ASSERT_FALSE(writePicture(path(u"p.bmp"_s), pageLike({40, 40}), BitmapFileType::BMP, {1, 2, {}}));
  EXPECT_NEAR(QImage(path(u"p.bmp"_s)).dotsPerMeterX(), 5669, 1);
  for (const auto type : {BitmapFileType::PNG, BitmapFileType::TIFF, BitmapFileType::JPEG}) {
    ASSERT_FALSE(writePicture(path(u"p"_s), pageLike({40, 40}), type, {1, 2, {}}));
    ASSERT_FALSE(convertPicture(path(u"p"_s), path(u"p.png"_s), BitmapFileType::PNG, 1));
    // 144 dots per inch.
    EXPECT_NEAR(QImage(path(u"p.png"_s)).dotsPerMeterX(), 5669, 10) << int(type);
  }
}

TEST_F(PictureFile, laysTransparencyOnWhite) {
  QImage glass(64, 64, QImage::Format_ARGB32);
  glass.fill(qRgba(255, 0, 0, 128));
  ASSERT_TRUE(glass.save(path(u"glass.png"_s)));
  for (const auto type :
       {BitmapFileType::TIFF, BitmapFileType::BMP, BitmapFileType::GIF, BitmapFileType::JPEG}) {
    ASSERT_FALSE(convertPicture(path(u"glass.png"_s), path(u"converted"_s), type, 1));
    ASSERT_FALSE(writePicture(path(u"written"_s), glass, type));
    for (const QString& name : {u"converted"_s, u"written"_s}) {
      const QColor pixel = decoded(path(name)).pixelColor(32, 32);
      EXPECT_NEAR(pixel.red(), 255, 2);
      EXPECT_NEAR(pixel.green(), 127, 3);
    }
  }
}

TEST_F(PictureFile, growsWithTheCompressionFactorWhereTheFormatUsesOne) {
  const QImage page = pageLike({256, 256});
  ASSERT_FALSE(writePicture(path(u"page"_s), page, BitmapFileType::PNG));
  for (const BitmapFormat& format : bitmapFormats()) {
    SCOPED_TRACE(format.name.toStdString());
    std::vector<qsizetype> sizes;
    for (int tenths = 0; tenths <= 10; ++tenths) {
      ASSERT_FALSE(
          convertPicture(path(u"page"_s), path(u"out"_s), format.type, float(tenths) / 10));
      sizes.push_back(bytesOf(path(u"out"_s)).size());
    }
    EXPECT_TRUE(std::is_sorted(sizes.begin(), sizes.end()));
    const bool used = format.compressionFactor == CompressionFactor::Used;
    EXPECT_EQ(sizes.front() * 3 < sizes.back(), used);
    EXPECT_EQ(sizes.front() == sizes.back(), !used);
  }
}

/// 65,536 colours.
QImage shades() {
  QImage sky(256, 256, QImage::Format_RGB32);
  for (int y = 0; y < 256; ++y) {
    for (int x = 0; x < 256; ++x)
      sky.setPixel(x, y, qRgb(x, y, 255 - (x + y) / 2));
  }
  return sky;
}

TEST_F(PictureFile, aGifKeepsUpTo256ColoursWhereverTheyAre) {
  for (const int colours : {1, 2, 3, 129, 256}) {
    QImage picture(67, 31, QImage::Format_RGB32);
    for (int pixel = 0; pixel < 67 * 31; ++pixel) {
      const int number = pixel * 89 % colours;
      picture.setPixel(pixel % 67, pixel / 67, qRgb(number, 255 - number, number / 2));
    }
    ASSERT_FALSE(writePicture(path(u"few.gif"_s), picture, BitmapFileType::GIF));
    EXPECT_EQ(difference(decoded(path(u"few.gif"_s)), picture).largest, 0) << colours;
  }
}

TEST_F(PictureFile, aGifKeepsEvenGroundsEvenAmongShades) {
  QImage page = shades();
  // The first two are as close as can be, and shades border on all of them.
  const std::pair<QRect, QRgb> grounds[] = {{{10, 20, 60, 40}, qRgb(254, 254, 254)},
                                            {{70, 20, 60, 40}, qRgb(255, 255, 255)},
                                            {{30, 100, 200, 9}, qRgb(10, 124, 255)},
                                            {{90, 180, 12, 12}, qRgb(45, 164, 78)}};
  for (const auto& [place, colour] : grounds) {
    for (int y = place.top(); y <= place.bottom(); ++y)
      std::fill_n(reinterpret_cast<QRgb*>(page.scanLine(y)) + place.left(), place.width(), colour);
  }
  ASSERT_FALSE(writePicture(path(u"page.gif"_s), page, BitmapFileType::GIF));
  const QImage shown = decoded(path(u"page.gif"_s));
  for (const auto& [place, colour] : grounds)
    EXPECT_EQ(difference(shown.copy(place), page.copy(place)).largest, 0) << colour;
}

TEST_F(PictureFile, aGifOfManyColoursIsDitheredNotBanded) {
  const QImage sky = shades();
  ASSERT_FALSE(writePicture(path(u"sky.gif"_s), sky, BitmapFileType::GIF));
  const QImage shown = decoded(path(u"sky.gif"_s));
  // From afar a dithered picture has the colours of the original; a banded one is off by half a
  // band.
  const auto fromAfar = [](const QImage& image) {
    return image.scaled(32, 32, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  };
  EXPECT_LT(difference(fromAfar(shown), fromAfar(sky)).mean, 1.5);
  EXPECT_GT(difference(shown, sky).mean, 1) << "256 colours cannot be exact";
  // A speck of a foreign colour would be seen.
  EXPECT_LT(difference(shown, sky).largest, 64);
}

TEST_F(PictureFile, aPngBecomesAPngByteForByteButForItsAddress) {
  const QImage page = pageLike({120, 80});
  ASSERT_FALSE(writePicture(path(u"a.png"_s), page, BitmapFileType::PNG,
                            {1, 1, {u"http://127.0.0.1/old"_s}}));
  ASSERT_FALSE(convertPicture(path(u"a.png"_s), path(u"a.png"_s), BitmapFileType::PNG, 0,
                              {u"http://127.0.0.1/new"_s}));
  const QByteArray bytes = bytesOf(path(u"a.png"_s));
  EXPECT_TRUE(bytes.contains("127.0.0.1/new"));
  EXPECT_FALSE(bytes.contains("127.0.0.1/old"));
  EXPECT_EQ(difference(decoded(path(u"a.png"_s)), page).largest, 0);
  // Grey, with transparency and made elsewhere: as it is.
  QImage foreign(9, 9, QImage::Format_ARGB32);
  foreign.fill(qRgba(1, 2, 3, 4));
  ASSERT_TRUE(foreign.save(path(u"foreign.png"_s)));
  ASSERT_FALSE(convertPicture(path(u"foreign.png"_s), path(u"copy.png"_s), BitmapFileType::PNG, 1));
  EXPECT_EQ(bytesOf(path(u"copy.png"_s)), bytesOf(path(u"foreign.png"_s)));
}

TEST_F(PictureFile, anAddressThatHoldsADocumentIsLeftOut) {
  const PictureMetadata metadata{u"data:text/html,"_s + QString(100'000, u'x')};
  ASSERT_FALSE(writePicture(path(u"p.png"_s), pageLike({20, 20}), BitmapFileType::PNG));
  for (const BitmapFormat& format : bitmapFormats()) {
    ASSERT_FALSE(convertPicture(path(u"p.png"_s), path(u"out"_s), format.type, 1, metadata));
    EXPECT_FALSE(bytesOf(path(u"out"_s)).contains("data:text/html"));
    EXPECT_FALSE(decoded(path(u"out"_s)).isNull());
  }
}

}  // namespace
}  // namespace imaging
