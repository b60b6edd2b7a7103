#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "capture/CVPrintImageView.h"
#include "platform/imaging/PictureWriter.h"

using namespace Qt::StringLiterals;

namespace {

/// A document of 1000 x 3000 points, pictured at two pixels a point.
PagePicture tallPicture() {
  PagePicture picture;
  picture.size = QSizeF(1000, 3000);
  picture.strips.pixels = QSize(2000, 6000);
  return picture;
}

printing::PrintInfo paper(double width, double height, double margin) {
  printing::PrintInfo info = printing::PrintInfo::sharedPrintInfo();
  info.setPaperSize(QSizeF(width, height));
  info.setTopMargin(margin);
  info.setBottomMargin(margin);
  info.setLeftMargin(margin);
  info.setRightMargin(margin);
  return info;
}

TEST(PicturePages, RowsFollowOneAnotherOverThePrintableWidth) {
  const CVPrintImageView view(tallPicture());
  EXPECT_EQ(view.frame(), QRectF(0, 0, 500, 1500));
  EXPECT_FALSE(view.isFlipped());
  // 500 points of printable width show 1000 of the document; 700 points of height, 1400.
  const auto pages = view.pagesFor(paper(600, 800, 50));
  ASSERT_EQ(pages.size(), 3U);
  int row = 0;
  for (const auto& page : pages) {
    EXPECT_EQ(page.firstRow, row);
    EXPECT_EQ(page.target.topLeft(), QPointF(50, 50));
    EXPECT_EQ(page.target.width(), 500);
    EXPECT_NEAR(page.target.height(), page.rows / 4.0, 1e-6);
    row += page.rows;
  }
  EXPECT_EQ(row, 6000);
  EXPECT_EQ(pages[0].rows, 2800);
}

TEST(PicturePages, NoPageEndsWithinALineOfText) {
  PagePicture picture = tallPicture();
  for (double top = 10; top < 2990; top += 30)
    picture.text.unbreakableRows.push_back({top, top + 20});
  const auto pages = CVPrintImageView(picture).pagesFor(paper(600, 800, 50));
  for (const auto& page : pages) {
    const double end = (page.firstRow + page.rows) / 2.0;
    for (const auto& line : picture.text.unbreakableRows) {
      EXPECT_FALSE(line.top + 0.5 < end && end < line.bottom - 0.5) << end;
    }
  }
}

/// A page of 600 x 800 points with margins of 50 holds 1400 points of the document.
TEST(PicturePages, NoPageIsLeftForAFewRows) {
  struct Case {
    double height;
    double lineHeight;  ///< 0: no text
    size_t pages;
    bool narrower;
  };
  for (const auto& [height, lineHeight, count, narrower] :
       {Case{2800, 0, 2, false}, Case{2801, 0, 2, true}, Case{2812, 0, 2, true},
        Case{2850, 0, 3, false}, Case{1413, 0, 1, true}, Case{2806, 28, 2, true},
        Case{2850, 28, 3, false}}) {
    SCOPED_TRACE(height);
    PagePicture picture = tallPicture();
    picture.size.setHeight(height);
    picture.strips.pixels.setHeight(static_cast<int>(2 * height));
    for (double top = 0; lineHeight > 0 && top < height; top += lineHeight)
      picture.text.unbreakableRows.push_back({top, std::min(height, top + lineHeight)});
    const auto pages = CVPrintImageView(picture).pagesFor(paper(600, 800, 50));
    ASSERT_EQ(pages.size(), count);
    int row = 0;
    for (const auto& page : pages) {
      EXPECT_EQ(page.firstRow, std::exchange(row, page.firstRow + page.rows));
      EXPECT_LE(page.target.bottom(), 750.001);
      EXPECT_EQ(page.target.left(), 50);
      EXPECT_GE(page.target.width(), 500 * 0.989);
      EXPECT_EQ(page.target.width() < 500, narrower);
      EXPECT_NEAR(page.target.height() / page.rows, page.target.width() / 2000, 1e-6);
    }
    EXPECT_EQ(row, 2 * height);
  }
}

/// 100 x 700 pixels with marks down to `end`; a page holds 280 rows.
PagePicture markedPicture(const QTemporaryDir& folder, int end) {
  const QString path = folder.filePath(u"%1.png"_s.arg(end));
  PagePicture picture;
  picture.size = QSizeF(100, 700);
  auto writer = imaging::PictureWriter::create(path, QSize(100, 700), imaging::BitmapFileType::PNG);
  QImage rows(100, 700, QImage::Format_RGB32);
  rows.fill(Qt::white);
  for (int row = 0; row < end; ++row)
    rows.setPixel(row % 100, row, qRgb(250, row % 256, 3));
  EXPECT_FALSE((*writer)->append(rows));
  EXPECT_FALSE((*writer)->finish());
  picture.strips = imaging::readPictureStrips(path).value_or(imaging::PictureStrips());
  return picture;
}

TEST(PicturePages, WhiteRowsAtTheEndTakeNoPage) {
  const QTemporaryDir folder;
  const auto pagesFor = [](const PagePicture& picture) {
    return CVPrintImageView(picture).pagesFor(paper(600, 1500, 50)).size();
  };
  for (const auto& [end, pages] : std::vector<std::pair<int, size_t>>{
           {0, 1}, {280, 1}, {281, 2}, {559, 2}, {560, 2}, {561, 3}, {700, 3}})
    EXPECT_EQ(pagesFor(markedPicture(folder, end)), pages) << end;
  PagePicture lost = markedPicture(folder, 280);
  QFile::remove(lost.strips.path);
  EXPECT_EQ(pagesFor(lost), 3u);
  PagePicture worded = markedPicture(folder, 280);
  worded.text.unbreakableRows.push_back({650, 660});
  EXPECT_EQ(pagesFor(worded), 3u);
}

TEST(PicturePages, MarginsThatLeaveNoRoomGiveNoPage) {
  EXPECT_TRUE(CVPrintImageView(tallPicture()).pagesFor(paper(600, 800, 300)).empty());
}

}  // namespace
