#include <gtest/gtest.h>

#include "capture/CVPrintImageView.h"

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

TEST(PicturePages, MarginsThatLeaveNoRoomGiveNoPage) {
  EXPECT_TRUE(CVPrintImageView(tallPicture()).pagesFor(paper(600, 800, 300)).empty());
}

}  // namespace
