#include <gtest/gtest.h>

#include "capture/CVPageView.h"
#include "queue/CVEntry.h"
#include "settings/CVPreferences.h"

using namespace Qt::StringLiterals;

namespace {

/// Every character is half as wide as the font is high, every line exactly as high.
class RecordingCanvas : public pdf::PageCanvas {
 public:
  QSizeF sizeOfText(const QString& text, const Font& font) const override {
    if (text.isEmpty() || font.pointSize <= 0) return {0, 0};
    return {static_cast<double>(text.size()) * font.pointSize / 2, font.pointSize};
  }
  void drawText(const QString& text, const Font& font, const QRectF& rectangle,
                pdf::LineBreaking breaking) override {
    drawn.push_back({text, font.pointSize, rectangle, breaking});
  }

  struct Drawn {
    QString text;
    double pointSize;
    QRectF rectangle;
    pdf::LineBreaking breaking;
  };
  std::vector<Drawn> drawn;
};

class PrintedThing : public printing::PrintableView {
 public:
  explicit PrintedThing(bool flipped) : flipped_(flipped) {}
  QRectF frame() const override { return {0, 0, 512, 900}; }
  bool isFlipped() const override { return flipped_; }
  void printTo(const printing::PrintInfo&, const QString&,
               std::function<void(MaybeError)>) override {}

 private:
  const bool flipped_;
};

class PageView : public testing::Test {
 protected:
  PageView() {
    preferences->setIncludeHeadersAndFooters(true);
    preferences->setMargin(25);
    preferences->setHeaderAndFooterFont(Font{u"Any"_s, 8});
    preferences->setNotes(u"notes"_s);
    entry->setTitle(u"A title"_s);
    entry->setCurrentURL(QUrl(u"http://localhost/page"_s));
    view->setPreferences(preferences);
    view->setParent(entry);
  }

  std::vector<RecordingCanvas::Drawn> draw(bool flipped) {
    view->setPrintView(std::make_shared<PrintedThing>(flipped));
    RecordingCanvas canvas;
    view->drawPageBorderWithSize(canvas, page);
    return canvas.drawn;
  }

  const QSizeF page{400, 600};
  const std::shared_ptr<CVPreferences> preferences = std::make_shared<CVPreferences>();
  const std::shared_ptr<CVEntry> entry = std::make_shared<CVEntry>(QUrl(u"http://localhost/"_s));
  const std::shared_ptr<CVPageView> view = std::make_shared<CVPageView>(QRectF());
};

TEST_F(PageView, TakesTheFrameAndOrientationOfWhatItPrints) {
  EXPECT_FALSE(view->isFlipped());
  view->setPrintView(std::make_shared<PrintedThing>(true));
  EXPECT_TRUE(view->isFlipped());
  EXPECT_EQ(view->frame(), QRectF(0, 0, 512, 900));
  view->setPrintView(nullptr);
  EXPECT_EQ(view->frame(), QRectF());
}

TEST_F(PageView, HeadersAndFootersStandInTheirPlaces) {
  // Margin 25: the header hangs 12 points below the edge, not 12.5.
  for (const bool flipped : {true, false}) {
    SCOPED_TRACE(flipped ? "flipped" : "unflipped");
    const auto drawn = draw(flipped);
    ASSERT_EQ(drawn.size(), 5U);
    const auto& [date, title, notes, address, label] =
        std::tie(drawn[0], drawn[1], drawn[2], drawn[3], drawn[4]);
    const double dateWidth = date.rectangle.width();
    EXPECT_EQ(date.rectangle, QRectF(400 - 25 - dateWidth, 12, dateWidth, 8));
    EXPECT_EQ(title.text, u"A title"_s);
    EXPECT_EQ(title.rectangle, QRectF(25, 12, 400 - dateWidth - 50, 8));
    EXPECT_EQ(label.text, flipped ? u"Page 1"_s : u"Page 2"_s);
    const double labelWidth = 6 * 4;
    const double addressWidth = 400 - labelWidth - 50;
    if (flipped) {
      EXPECT_EQ(notes.rectangle, QRectF(25, 600 - 25 + 8, 350, 25 - 8));
      EXPECT_EQ(address.rectangle, QRectF(25, 600 - 8, addressWidth, 8));
      EXPECT_EQ(label.rectangle, QRectF(400 - 25 - labelWidth, 600 - 8, labelWidth, 8));
    } else {
      EXPECT_EQ(notes.rectangle, QRectF(25, 600 - 25, 350, 25 - 8));
      EXPECT_EQ(address.rectangle, QRectF(25, 600 - 16, addressWidth, 8));
      EXPECT_EQ(label.rectangle, QRectF(400 - 25 - labelWidth, 600 - 16, labelWidth, 8));
    }
    EXPECT_EQ(address.breaking, pdf::LineBreaking::None);
    EXPECT_EQ(title.breaking, pdf::LineBreaking::Word);
  }
}

TEST_F(PageView, ALongAddressShrinksPointByPointUntilItFits) {
  entry->setCurrentURL(QUrl(u"http://localhost/"_s + QString(120, u'x')));
  const auto drawn = draw(true);
  // 137 characters in 326 points: 137 * 4 / 2 fits, 137 * 5 / 2 does not.
  EXPECT_EQ(drawn[3].pointSize, 4);
  EXPECT_EQ(drawn[0].pointSize, 8);
}

TEST_F(PageView, ShrinkingEndsAndTakesWidthsByTheirMagnitude) {
  const RecordingCanvas canvas;
  const Font seed{u"Any"_s, 10};
  const auto fitted = [&](double width) {
    return CVPageView::fontForStringToFitInWidth(u"abcd"_s, width, seed, canvas).pointSize;
  };
  EXPECT_EQ(fitted(20), 10);
  EXPECT_EQ(fitted(19.9), 9);
  EXPECT_EQ(fitted(-12), 6);
  EXPECT_LE(fitted(0), 0);
}

TEST_F(PageView, SwitchedOffItNeitherDrawsNorCounts) {
  preferences->setIncludeHeadersAndFooters(false);
  EXPECT_TRUE(draw(true).empty());
  EXPECT_EQ(view->pageNumber(), 0U);
}

TEST_F(PageView, MissingTextsLeaveTheirPlaceBlank) {
  preferences->setNotes(std::nullopt);
  entry->setTitle(std::nullopt);
  entry->setCurrentURL(std::nullopt);
  const auto drawn = draw(true);
  ASSERT_EQ(drawn.size(), 5U);
  EXPECT_TRUE(drawn[1].text.isEmpty() && drawn[2].text.isEmpty() && drawn[3].text.isEmpty());
  EXPECT_EQ(drawn[4].text, u"Page 1"_s);
}

}  // namespace
