#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <cmath>

#include "Samples.h"
#include "Tools.h"
#include "platform/pdf/DocumentFacts.h"
#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/PicturePages.h"

using namespace Qt::StringLiterals;

namespace {

QRgb dark(int, int) {
  return qRgb(10, 20, 30);
}

/// Bands of 64 rows, so that a strip put at a wrong place shows.
QRgb bands(int, int y) {
  const int band = y / 64;
  return qRgb(band * 37 % 256, band * 91 % 256, band * 153 % 256);
}

struct Written {
  QString path;
  Result<pdf::WrittenPicturePages> result;
};

Written write(const imaging::PictureStrips& picture, QSizeF documentSize,
              const std::vector<pdf::PicturePage>& pages, const pdf::PictureText& text = {}) {
  const QString path = tools::fresh(u"picture.pdf"_s);
  return {path, pdf::writePicturePages(picture, documentSize, pages, text, path)};
}

Written writeWhole(const imaging::PictureStrips& picture, const pdf::PictureText& text = {}) {
  const QSizeF size = picture.pixels;
  return write(picture, size, {pdf::wholePicturePage(size, picture.pixels.height())}, text);
}

double distance(const QRectF& one, const QRectF& other) {
  return std::max({std::abs(one.left() - other.left()), std::abs(one.right() - other.right()),
                   std::abs(one.top() - other.top()), std::abs(one.bottom() - other.bottom())});
}

QByteArray imageBytes(const QString& path, int image) {
  const QString stem = tools::fresh(u"image"_s);
  tools::run(u"pdfimages"_s, {u"-png"_s, path, stem});
  const QImage picture(stem + u"-%1.png"_s.arg(image, 3, 10, QLatin1Char('0')));
  const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
  return QByteArray(reinterpret_cast<const char*>(rgb.constBits()), rgb.sizeInBytes());
}

TEST(PicturePages, OnePageIsHalfTheDocumentAndEveryRowIsInItsPlace) {
  const imaging::PictureStrips picture = samples::picture({200, 9000}, bands);
  ASSERT_GT(picture.strips.size(), 1u);
  const Written written = writeWhole(picture);
  ASSERT_TRUE(written.result) << qPrintable(written.result.error().localizedDescription);
  EXPECT_EQ(tools::complaints(written.path), QString());
  const auto facts = pdf::documentFacts(written.path);
  ASSERT_TRUE(facts);
  EXPECT_EQ(facts->pageSizes, std::vector{QSizeF(100, 4500)});
  const QImage page = tools::pixels(written.path, 144);
  ASSERT_EQ(page.size(), QSize(200, 9000));
  for (int y = 5; y < 9000; y += 64) {
    EXPECT_EQ(page.pixel(100, y + 27), bands(0, y + 27)) << "row " << y + 27;
  }
}

TEST(PicturePages, TheRowsAreTheSourcesOwnBytes) {
  const imaging::PictureStrips picture =
      samples::picture({64, 300}, [](int x, int y) { return qRgb(x, y % 256, 7); });
  const Written written = writeWhole(picture);
  ASSERT_TRUE(written.result);
  const QByteArray source = tools::contents(picture.path), document = tools::contents(written.path);
  const imaging::ByteRange packed = picture.strips.front().packed;
  EXPECT_TRUE(document.contains(source.mid(packed.offset, packed.length)));
  const QByteArray pixels = imageBytes(written.path, 0);
  ASSERT_EQ(pixels.size(), 64 * 300 * 3);
  EXPECT_EQ(static_cast<unsigned char>(pixels[(200 * 64 + 33) * 3]), 33);
}

/// Anti-aliasing lets the white paper through where two strips meet within a pixel.
TEST(PicturePages, NoLightLinesBetweenStripsAtAnyZoom) {
  const imaging::PictureStrips picture = samples::picture({60, 9001}, dark);
  ASSERT_GT(picture.strips.size(), 1u);
  const Written written = writeWhole(picture);
  ASSERT_TRUE(written.result);
  for (const char* program : {"pdftoppm", "pdftocairo"}) {
    for (const double zoom : {36.0, 48.0, 72.0, 96.0, 100.7, 120.0, 150.0}) {
      const QImage page = tools::pixels(written.path, zoom, 1, QString::fromLatin1(program));
      ASSERT_FALSE(page.isNull());
      int lightRows = 0;
      for (int y = 1; y < page.height() - 2; ++y) {
        lightRows += qRed(page.pixel(page.width() / 2, y)) > 12 ? 1 : 0;
      }
      EXPECT_EQ(lightRows, 0) << program << " at " << zoom;
    }
  }
}

TEST(PicturePages, SlicesBeginAndEndAnywhereInTheStrips) {
  const imaging::PictureStrips picture = samples::picture({200, 9000}, bands);
  const QSizeF paper(300, 400);
  const int rows = 1300;
  std::vector<pdf::PicturePage> pages;
  for (int first = 0; first < 9000; first += rows) {
    const int shown = std::min(rows, 9000 - first);
    pages.push_back({paper, first, shown, QRectF(50, 30, 50, shown * 0.25)});
  }
  const Written written = write(picture, QSizeF(200, 9000), pages);
  ASSERT_TRUE(written.result);
  EXPECT_EQ(written.result->pageCount, 7);
  EXPECT_EQ(tools::complaints(written.path), QString());
  for (int number = 1; number <= 7; ++number) {
    const QImage page = tools::pixels(written.path, 288, number);
    const pdf::PicturePage& slice = pages[static_cast<size_t>(number - 1)];
    const int top = 120, bottom = top + slice.rows;
    for (int y = top + 8; y < bottom; y += 16) {
      const int row = slice.firstRow + y - top;
      if (row % 64 < 4 || row % 64 > 59) continue;
      EXPECT_EQ(page.pixel(250, y), bands(0, row)) << "page " << number << " row " << row;
    }
    EXPECT_EQ(page.pixel(250, top - 3), qRgb(255, 255, 255));
    EXPECT_EQ(page.pixel(250, bottom + 3), qRgb(255, 255, 255));
    EXPECT_EQ(page.pixel(195, top + 50), qRgb(255, 255, 255));
  }
}

TEST(PicturePages, PagesLongerThanReadersShowKeepWithinTheLimitByAUserUnit) {
  const imaging::PictureStrips picture = samples::picture({40, 60000}, bands);
  pdf::PictureText text;
  text.runs.push_back({u"deep"_s, QRectF(4, 59000, 30, 12), 10});
  const Written written = writeWhole(picture, text);
  ASSERT_TRUE(written.result);
  ASSERT_TRUE(written.result->note);
  EXPECT_THAT(written.result->note->toStdString(), testing::HasSubstr("30000"));
  const auto facts = pdf::documentFacts(written.path);
  ASSERT_TRUE(facts);
  EXPECT_NEAR(facts->pageSizes[0].height(), 30000, 0.5);
  EXPECT_NEAR(facts->pageSizes[0].width(), 20, 0.01);
  // Poppler does not know user units and measures the reduced page.
  EXPECT_LT(distance(tools::boxOf(written.path, u"deep"_s), QRectF(0.96, 14160, 7.2, 2.88)), 0.01);
}

struct Script {
  const char* name;
  QString text;
  pdf::TextDirection direction;
};

class PictureText : public testing::TestWithParam<Script> {};

TEST_P(PictureText, IsFoundWhereItStandsAndCopiedAsItReads) {
  const imaging::PictureStrips picture = samples::picture({400, 300}, dark);
  pdf::PictureText text;
  text.runs.push_back({GetParam().text, QRectF(100, 200, 120, 20), 16, GetParam().direction});
  const Written written = writeWhole(picture, text);
  ASSERT_TRUE(written.result);
  EXPECT_EQ(tools::complaints(written.path), QString());
  EXPECT_EQ(tools::text(written.path), GetParam().text);
  EXPECT_LT(distance(tools::boxOf(written.path, GetParam().text), QRectF(50, 100, 60, 10)), 0.02);
  const QImage page = tools::pixels(written.path, 144);
  EXPECT_EQ(page.pixel(150, 210), dark(0, 0)) << "the text is to be invisible";
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, PictureText,
    testing::Values(Script{"Latin", u"difficult"_s, pdf::TextDirection::LeftToRight},
                    Script{"Accents", u"e\u0301te\u0301s"_s, pdf::TextDirection::LeftToRight},
                    Script{"Greek", u"Ελληνικά"_s, pdf::TextDirection::LeftToRight},
                    Script{"Chinese", u"网页截图"_s, pdf::TextDirection::LeftToRight},
                    Script{"OutsideBasicPlane", u"a😀𝄞b"_s, pdf::TextDirection::LeftToRight},
                    Script{"Hebrew", u"שלום"_s, pdf::TextDirection::RightToLeft},
                    Script{"Arabic", u"مرحبا"_s, pdf::TextDirection::RightToLeft}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PictureTextLines, WordsOfALineKeepTheirOrderInBothDirections) {
  const imaging::PictureStrips picture = samples::picture({400, 300}, dark);
  using enum pdf::TextDirection;
  pdf::PictureText text;
  text.runs = {{u"one"_s, QRectF(10, 10, 30, 16), 14, LeftToRight},
               {u"two"_s, QRectF(44, 10, 30, 16), 14, LeftToRight},
               {u"שלום"_s, QRectF(350, 60, 40, 16), 14, RightToLeft},
               {u"עולם"_s, QRectF(306, 60, 40, 16), 14, RightToLeft},
               {u"half"_s, QRectF(10, 110, 30, 16), 14, LeftToRight, false},
               {u"word"_s, QRectF(40, 110, 30, 16), 14, LeftToRight}};
  const Written written = writeWhole(picture, text);
  ASSERT_TRUE(written.result);
  EXPECT_EQ(tools::text(written.path), u"one two שלום עולם halfword"_s);
}

TEST(PictureTextLines, AMixedLineReadsInItsLogicalOrder) {
  const imaging::PictureStrips picture = samples::picture({400, 100}, dark);
  pdf::PictureText text;
  using enum pdf::TextDirection;
  text.runs = {{u"גרסה"_s, QRectF(340, 10, 40, 16), 14, RightToLeft},
               {u"של"_s, QRectF(312, 10, 24, 16), 14, RightToLeft},
               {u"Qt"_s, QRectF(286, 10, 20, 16), 14, LeftToRight}};
  const Written written = writeWhole(picture, text);
  ASSERT_TRUE(written.result);
  EXPECT_EQ(tools::text(written.path), u"גרסה של Qt"_s);
}

TEST(PictureTextPages, TextLinksAndOutlineGoToThePageThatShowsThem) {
  const imaging::PictureStrips picture = samples::picture({200, 2000}, bands);
  const std::vector<pdf::PicturePage> pages = {{{150, 600}, 0, 1000, QRectF(25, 50, 100, 500)},
                                               {{150, 600}, 1000, 1000, QRectF(25, 50, 100, 500)}};
  pdf::PictureText text;
  text.runs = {{u"upper"_s, QRectF(20, 100, 60, 20), 16},
               {u"lower"_s, QRectF(20, 1500, 60, 20), 16}};
  text.links = {{u"http://localhost/a(b)?q=é"_s, std::nullopt, {QRectF(20, 980, 60, 40)}},
                {std::nullopt, 1500, {QRectF(20, 100, 60, 20)}},
                {u"javascript:void(0)"_s, std::nullopt, {QRectF(20, 300, 60, 20)}}};
  text.headings = {
      {u"Über"_s, 1, 90}, {u"Below"_s, 3, 1400}, {u"Next"_s, 2, 1600}, {u"Last"_s, 1, 1900}};
  text.language = u"de"_s;
  const Written written = write(picture, QSizeF(200, 2000), pages, text);
  ASSERT_TRUE(written.result);
  EXPECT_EQ(tools::complaints(written.path), QString());

  const std::vector<tools::Word> words = tools::words(written.path);
  ASSERT_EQ(words.size(), 2u);
  EXPECT_EQ(words[0].page, 1);
  EXPECT_LT(distance(words[0].box, QRectF(35, 100, 30, 10)), 0.02);
  EXPECT_EQ(words[1].page, 2);
  EXPECT_LT(distance(words[1].box, QRectF(35, 300, 30, 10)), 0.02);

  const QString json = tools::run(u"qpdf"_s, {u"--json"_s, written.path}).output;
  EXPECT_EQ(json.count(u"a(b)?q=%C3%A9"_s), 2) << "a link over the page break is on both pages";
  EXPECT_FALSE(json.contains(u"javascript"_s));
  EXPECT_TRUE(json.contains(u"\"/Lang\": \"u:de\""_s));
  const QString outline =
      tools::run(u"qpdf"_s, {u"--json=1"_s, u"--json-key=outlines"_s, written.path}).output;
  static const QRegularExpression titles(u"\"destpageposfrom1\": (\\d)|\"title\": \"([^\"]*)\""_s);
  QStringList order;
  for (auto found = titles.globalMatch(outline); found.hasNext();)
    order += found.next().captured(0).section(u": "_s, 1);
  EXPECT_EQ(order, (QStringList{u"1"_s, u"2"_s, u"\"Below\""_s, u"2"_s, u"\"Next\""_s,
                                u"\"Über\""_s, u"2"_s, u"\"Last\""_s}));
}

TEST(PictureFailures, LeaveNoFile) {
  const imaging::PictureStrips picture = samples::picture({64, 300}, dark);
  const pdf::PicturePage whole = pdf::wholePicturePage({64, 300}, 300);
  imaging::PictureStrips gone = picture, cut = picture;
  gone.path += u".missing"_s;
  cut.path = tools::file(u"cut.png"_s, tools::contents(picture.path).left(80));
  pdf::PicturePage beyond = whole;
  beyond.firstRow = 1;
  pdf::PicturePage flat = whole;
  flat.target.setHeight(0);
  struct Case {
    const char* name;
    const imaging::PictureStrips& picture;
    std::vector<pdf::PicturePage> pages;
    int code;
  };
  for (const Case& bad : {Case{"missing picture", gone, {whole}, pdf::PDFErrorUnreadable},
                          Case{"cut picture", cut, {whole}, pdf::PDFErrorUnreadable},
                          Case{"no pages", picture, {}, pdf::PDFErrorNoPages},
                          Case{"rows beyond the picture", picture, {beyond}, pdf::PDFErrorArgument},
                          Case{"no height", picture, {flat}, pdf::PDFErrorArgument}}) {
    const Written written = write(bad.picture, {64, 300}, bad.pages);
    ASSERT_FALSE(written.result) << bad.name;
    EXPECT_EQ(written.result.error().code, bad.code) << bad.name;
    EXPECT_FALSE(QFile::exists(written.path)) << bad.name;
  }
  const auto full =
      pdf::writePicturePages(picture, {64, 300}, {whole}, {}, u"/nowhere/at/all.pdf"_s);
  ASSERT_FALSE(full);
  EXPECT_EQ(full.error().code, pdf::PDFErrorWrite);
}

}  // namespace
