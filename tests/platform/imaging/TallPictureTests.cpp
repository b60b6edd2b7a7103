#include <QFile>

#include "TestPictures.h"

namespace imaging {
namespace {

using namespace Qt::StringLiterals;

constexpr int tall = 70'000;

class TallPicture : public PictureTest {
 protected:
  static MaybeError writeRows(const QString& path, QSize size, BitmapFileType type) {
    auto writer = PictureWriter::create(path, size, type);
    if (!writer) return writer.error();
    for (int row = 0; row < size.height(); row += 3'000) {
      const int rows = std::min(3'000, size.height() - row);
      if (auto error = (*writer)->append(numberedRows(size.width(), row, rows))) return error;
    }
    return (*writer)->finish();
  }
};

TEST_F(TallPicture, keepsEveryRowInItsPlaceBeyondSixteenBits) {
  for (const auto type :
       {BitmapFileType::PNG, BitmapFileType::TIFF, BitmapFileType::BMP, BitmapFileType::JPEG2000}) {
    SCOPED_TRACE(int(type));
    ASSERT_EQ(writeRows(path(u"p"_s), {24, tall}, type), MaybeError());
    const QImage picture = decoded(path(u"p"_s));
    ASSERT_EQ(picture.size(), QSize(24, tall));
    for (int row = 0; row < tall; row += 127)
      ASSERT_EQ(numberOfRow(picture.pixel(23, row)), row);
    EXPECT_EQ(numberOfRow(picture.pixel(0, tall - 1)), tall - 1);
  }
}

TEST_F(TallPicture, isRefusedByNameWhereTheFormatEnds) {
  const std::pair<BitmapFileType, QString> limits[] = {{BitmapFileType::JPEG, u"65,500"_s},
                                                       {BitmapFileType::GIF, u"65,535"_s}};
  ASSERT_FALSE(writeRows(path(u"source"_s), {8, tall}, BitmapFileType::PNG));
  for (const auto& [type, limit] : limits) {
    const auto direct = writeRows(path(u"p"_s), {8, tall}, type);
    const auto converted = convertPicture(path(u"source"_s), path(u"p"_s), type, 1);
    ASSERT_TRUE(direct && converted);
    EXPECT_EQ(*direct, *converted);
    for (const QString& words : {limit, u"70,000"_s, u"PNG"_s, u"TIFF"_s}) {
      EXPECT_TRUE(direct->localizedDescription.contains(words)) << words.toStdString();
    }
    const int most = bitmapFormat(type).longestSide;
    EXPECT_FALSE(writeRows(path(u"most"_s), {8, most}, type));
    EXPECT_EQ(decoded(path(u"most"_s)).height(), most);
  }
  EXPECT_TRUE(sizeError(BitmapFileType::BMP, {20'000, 80'000}));
  EXPECT_FALSE(sizeError(BitmapFileType::PNG, {20'000, 80'000}));
  EXPECT_FALSE(QFile::exists(path(u"p"_s)));
}

#ifndef __SANITIZE_ADDRESS__
/// Most memory in use since the last call, in megabytes.
int peakMemory() {
  int peak = 0;
  QFile status(u"/proc/self/status"_s);
  if (status.open(QIODevice::ReadOnly)) {
    const QByteArray text = status.readAll();
    peak = text.mid(text.indexOf("VmHWM:") + 6, 12).trimmed().split(' ').first().toInt() / 1024;
  }
  QFile reset(u"/proc/self/clear_refs"_s);
  if (reset.open(QIODevice::WriteOnly)) reset.write("5");
  return peak;
}

TEST_F(TallPicture, doesNotGrowTheMemoryInUse) {
  // The first conversion brings in the library.
  ASSERT_FALSE(writeRows(path(u"p"_s), {8, 8}, BitmapFileType::TIFF));
  // About 200 MB of pixels.
  const std::pair<BitmapFileType, int> heights[] = {{BitmapFileType::TIFF, tall},
                                                    {BitmapFileType::GIF, 65'535}};
  for (const auto& [type, height] : heights) {
    peakMemory();
    const int before = peakMemory();
    ASSERT_FALSE(writeRows(path(u"p"_s), {1'024, height}, type));
    EXPECT_LT(peakMemory() - before, 80) << int(type);
  }
}
#endif

}  // namespace
}  // namespace imaging
