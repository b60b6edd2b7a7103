#include "RenderingTest.h"

using namespace Qt::StringLiterals;
using rendering::RowInterval;
using rendering::TextDirection;
using rendering::TextLayer;
using rendering::TextRun;

namespace {

class TextLayerTest : public RenderingTest {
 protected:
  const TextRun& run(const QString& text) {
    static const TextRun none;
    for (const TextRun& candidate : layer.runs) {
      if (candidate.text == text) return candidate;
    }
    ADD_FAILURE() << text.toStdString() << " is missing";
    return none;
  }
  QString allText() const {
    QString text;
    for (const TextRun& candidate : layer.runs) {
      text += candidate.text + (candidate.endsWord ? u" "_s : QString());
    }
    return text.trimmed();
  }

  TextLayer layer;
};

TEST_F(TextLayerTest, VisibleTextComesInReadingOrder) {
  openFixture(u"text.html"_s);
  layer = textLayer();
  EXPECT_EQ(allText(),
            u"Heading one Plain words boldness LOUD שלום עולם "
            "Donaudampfschifffahrtsgesellschaftskapitaensmuetzenfabrik "
            "inside outside Target framed footer"_s);
  EXPECT_EQ(layer.language, u"en"_s);
  EXPECT_FALSE(layer.truncated);
}

TEST_F(TextLayerTest, WhatFieldsShowIsText) {
  openMarkup(
      u"<!DOCTYPE html><meta charset=utf-8><body style='margin:20px;font:16px sans-serif'>"_s
      "<style>input,select{width:200px;margin:0 100px 0 0}</style><p>"
      "<input value='typed words'><input placeholder=hint><input type=submit value='Press me'>"
      "<p><select><option>first<option selected>second</select><input type=password value=secret>"
      "<input style='text-align:right' value=rightmost><p dir=rtl><input value='שלום'>"
      "<p><input style='width:60px' value='shown incomprehensibilities'><input hidden "
      "value=no>");
  layer = textLayer();
  EXPECT_EQ(allText(), u"typed words hint Press me second rightmost שלום shown"_s);
  const QImage image = picture();
  for (const TextRun& each : layer.runs) {
    const QRectF box = each.rect;
    const auto inkFrom = [&](double left, double right) {
      int ink = 0;
      for (int y = qRound(box.top()); y < qRound(box.bottom()); ++y)
        for (int x = qRound(left); x < qRound(right); ++x)
          ink += image.rect().contains(x, y) && qGray(image.pixel(x, y)) < 160;
      return ink;
    };
    const std::string text = each.text.toStdString();
    EXPECT_GT(inkFrom(box.left(), box.left() + 5), 2) << text;
    EXPECT_GT(inkFrom(box.right() - 5, box.right() + 1), 2) << text;
    EXPECT_EQ(inkFrom(box.left() - 2, box.left()), 0) << text;
  }
}

TEST_F(TextLayerTest, BoxesLieOnTheInkOfThePicture) {
  openFixture(u"text.html"_s);
  layer = textLayer();
  const QImage image = picture();
  for (const TextRun& each : layer.runs) {
    const QRect box = each.rect.toAlignedRect();
    int ink = 0;
    for (int y = box.top(); y <= box.bottom(); ++y) {
      for (int x = box.left(); x <= box.right(); ++x) {
        ink += image.rect().contains(x, y) && qGray(image.pixel(x, y)) < 128;
      }
    }
    EXPECT_GT(ink, 10) << each.text.toStdString();
    // Nothing to the right of a line's last word.
    EXPECT_EQ(colour(image, 900, box.center().y()), "ffffff") << each.text.toStdString();
  }
  EXPECT_NEAR(run(u"footer"_s).rect.bottom(), image.height() - 40 + 26, 4)
      << "the bar stands at the end";
  EXPECT_EQ(run(u"Heading"_s).fontSize, 40);
}

TEST_F(TextLayerTest, DirectionsAndBrokenWordsAreExact) {
  openFixture(u"text.html"_s);
  layer = textLayer();
  const TextRun& first = run(u"שלום"_s);
  const TextRun& second = run(u"עולם"_s);
  EXPECT_EQ(first.direction, TextDirection::RightToLeft);
  EXPECT_NEAR(first.rect.right(), 400, 1);
  EXPECT_LT(second.rect.right(), first.rect.left()) << "the second word stands to the left";
  EXPECT_EQ(run(u"Plain"_s).direction, TextDirection::LeftToRight);

  std::vector<TextRun> pieces;
  for (const TextRun& each : layer.runs) {
    if (each.rect.top() > 150 && each.rect.top() < 210) pieces.push_back(each);
  }
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_TRUE(pieces[0].text.startsWith(u"Donau"_s));
  EXPECT_FALSE(pieces[0].endsWord);
  EXPECT_NEAR(pieces[1].rect.top() - pieces[0].rect.top(), 30, 1);
  EXPECT_LE(pieces[0].rect.right(), 400);
  EXPECT_EQ(pieces[1].rect.left(), 0);
}

TEST_F(TextLayerTest, LinksAndHeadingsLeadToTheirPlaces) {
  openFixture(u"text.html"_s);
  layer = textLayer();
  ASSERT_EQ(layer.links.size(), 2u);
  ASSERT_EQ(layer.headings.size(), 2u);
  EXPECT_EQ(layer.headings[0].text, u"Heading one"_s);
  EXPECT_EQ(layer.headings[1].level, 2);
  EXPECT_GT(layer.headings[1].y, 1700);
  EXPECT_EQ(layer.links[0].targetY, layer.headings[1].y);
  EXPECT_FALSE(layer.links[0].href);
  EXPECT_EQ(layer.links[1].href, u"http://127.0.0.1:9/out"_s);
  EXPECT_TRUE(layer.links[1].rects.front().contains(run(u"outside"_s).rect.center()));
}

TEST_F(TextLayerTest, WordsAreReadWithScriptsOff) {
  openFixture(u"text.html"_s, {.scripts = web::Scripts::Disabled});
  layer = textLayer();
  EXPECT_TRUE(allText().startsWith(u"Heading one Plain words boldness"_s));
}

TEST_F(TextLayerTest, LinesAndSmallPicturesShouldStayWhole) {
  openMarkup(
      u"<!DOCTYPE html><body style='margin:0;font:20px/30px serif'>one<br>two<div "
      u"style='height:40px'></div>"
      "<canvas style='display:block;width:50px;height:80px'></canvas>"
      "<canvas style='display:block;width:50px;height:2000px'></canvas>"_s);
  const auto rows = await<Result<std::vector<RowInterval>>>(
      [&](auto done) { rendering::breakCandidates(page, done); });
  ASSERT_TRUE(rows);
  ASSERT_EQ(rows->size(), 3u) << "two lines and one small picture";
  EXPECT_GT((*rows)[0].top, 0);
  EXPECT_LT((*rows)[0].bottom, (*rows)[1].top);
  EXPECT_EQ((*rows)[2].top, 100);
  EXPECT_EQ((*rows)[2].bottom, 180);
}

TEST(PageBreakTest, BreaksGoBetweenLinesUnlessThatCostsHalfAPage) {
  const std::vector<RowInterval> rows{{10, 20}, {22, 32}, {90, 110}, {130, 400}};
  EXPECT_EQ(rendering::pageBreakBefore(rows, 0, 100), 90);
  EXPECT_EQ(rendering::pageBreakBefore(rows, 0, 110), 110);
  EXPECT_EQ(rendering::pageBreakBefore(rows, 0, 90), 90);
  EXPECT_EQ(rendering::pageBreakBefore(rows, 0, 50), 50);
  EXPECT_EQ(rendering::pageBreakBefore(rows, 20, 31), 31) << "a break that helps is too far up";
  EXPECT_EQ(rendering::pageBreakBefore(rows, 110, 350), 350) << "higher than half a page";
  EXPECT_EQ(rendering::pageBreakBefore({}, 0, 50), 50);
  // Two columns whose lines do not meet: no row is free, one line is better cut than two.
  const std::vector<RowInterval> columns{{40, 60}, {50, 70}, {62, 82},
                                         {74, 94}, {78, 98}, {86, 106}};
  EXPECT_EQ(rendering::pageBreakBefore(columns, 0, 90), 74);
}

}  // namespace
