#include "platform/imaging/PictureStrips.h"

#include <zlib.h>

#include <QtEndian>

#include "TestPictures.h"

namespace imaging {
namespace {

using namespace Qt::StringLiterals;

class Strips : public PictureTest {};

/// The strip as a zlib stream of its own, unpacked; empty when it is not one.
QByteArray unpacked(const PictureStrips& picture, const PictureStrip& strip,
                    const QByteArray& file) {
  QByteArray stream(PictureStrips::streamHeader, 2);
  stream += file.mid(strip.packed.offset, strip.packed.length);
  stream += QByteArray(PictureStrips::lastBlock, 2);
  quint32 sum = qToBigEndian(strip.adler);
  stream += QByteArray(reinterpret_cast<const char*>(&sum), 4);
  QByteArray rows(qsizetype(strip.rows) * (picture.pixels.width() * 3 + 1), '\0');
  uLongf size = uLongf(rows.size());
  const int result =
      uncompress(reinterpret_cast<Bytef*>(rows.data()), &size,
                 reinterpret_cast<const Bytef*>(stream.constData()), uLong(stream.size()));
  return result == Z_OK && qsizetype(size) == rows.size() ? rows : QByteArray();
}

/// Undoes the filters None, Sub and Up in place. The first row has no row above.
bool unfilter(QByteArray& rows, int width) {
  const qsizetype stride = width * 3 + 1;
  for (qsizetype start = 0; start < rows.size(); start += stride) {
    const char filter = rows[start];
    if (filter > 2 || (filter == 2 && start == 0)) return false;
    for (qsizetype i = start + 1; filter != 0 && i < start + stride; ++i) {
      const bool hasReference = filter == 2 || i > start + 3;
      if (hasReference) rows[i] = char(rows[i] + rows[i - (filter == 2 ? stride : 3)]);
    }
  }
  return true;
}

TEST_F(Strips, standAloneAndCoverThePicture) {
  const QImage page = pageLike({300, 9'000});
  ASSERT_FALSE(writePicture(path(u"p"_s), page, BitmapFileType::PNG));
  const auto picture = readPictureStrips(path(u"p"_s));
  ASSERT_TRUE(picture) << picture.error().localizedDescription.toStdString();
  EXPECT_EQ(picture->pixels, page.size());
  const QByteArray file = bytesOf(path(u"p"_s));
  int row = 0;
  for (const PictureStrip& strip : picture->strips) {
    ASSERT_EQ(strip.firstRow, row);
    QByteArray rows = unpacked(*picture, strip, file);
    ASSERT_FALSE(rows.isEmpty());
    ASSERT_TRUE(unfilter(rows, 300));
    for (int i = 0; i < strip.rows; ++i, ++row) {
      const QImage expected = page.copy(0, row, 300, 1).convertToFormat(QImage::Format_RGB888);
      ASSERT_EQ(memcmp(rows.constData() + qsizetype(i) * 901 + 1, expected.constBits(), 900), 0)
          << row;
    }
  }
  EXPECT_EQ(row, page.height());
  EXPECT_GE(picture->strips.size(), 2u);
}

TEST_F(Strips, areNotTakenFromFilesThatAreCutShortChangedOrForeign) {
  ASSERT_FALSE(writePicture(path(u"p"_s), pageLike({64, 200}), BitmapFileType::PNG));
  const QByteArray whole = bytesOf(path(u"p"_s));
  for (qsizetype size = 0; size < whole.size() - 12; size += 1 + size / 10) {
    writeBytes(path(u"cut"_s), whole.first(size));
    EXPECT_FALSE(readPictureStrips(path(u"cut"_s))) << size;
  }
  for (const char* chunk : {"IHDR", "cvST"}) {
    QByteArray changed = whole;
    changed[changed.indexOf(chunk) + 7] = '\x7f';
    writeBytes(path(u"changed"_s), changed);
    EXPECT_FALSE(readPictureStrips(path(u"changed"_s))) << chunk;
  }
  // A copy made for the user keeps the picture and drops the table.
  ASSERT_FALSE(convertPicture(path(u"p"_s), path(u"copy"_s), BitmapFileType::PNG, 1));
  EXPECT_FALSE(readPictureStrips(path(u"copy"_s)));
  EXPECT_EQ(difference(decoded(path(u"copy"_s)), decoded(path(u"p"_s))).largest, 0);
  EXPECT_FALSE(readPictureStrips(path(u"none"_s)));
}

}  // namespace
}  // namespace imaging
