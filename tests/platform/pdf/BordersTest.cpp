#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFileInfo>

#include "Inspect.h"
#include "Samples.h"
#include "Tools.h"
#include "platform/pdf/DocumentFacts.h"
#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/PageCanvas.h"

using namespace Qt::StringLiterals;
using namespace pdf;

namespace {

const Font font{u"Liberation Sans"_s, 10};

QString bordered(const QString& input, const DrawPageBorder& draw) {
  const QString output = tools::fresh(u"bordered.pdf"_s);
  const MaybeError error = drawPageBorders(input, output, draw);
  EXPECT_FALSE(error) << qPrintable(error ? error->localizedDescription : QString());
  EXPECT_EQ(tools::complaints(output), QString());
  return output;
}

TEST(Borders, TextStandsWhereItIsDrawnAndIsAsWideAsMeasured) {
  const QString title = u"Difficult offices: Grüße"_s;
  QSizeF measured;
  const QString path =
      bordered(samples::pages({u"body"_s}), [&](PageCanvas& canvas, int, QSizeF page) {
        EXPECT_EQ(page, QSizeF(612, 792));
        measured = canvas.sizeOfText(title, font);
        canvas.drawText(title, font, QRectF(QPointF(50, 25), measured), LineBreaking::Word);
      });
  EXPECT_EQ(tools::text(path, {u"-raw"_s}), u"body "_s + title);
  const QRectF first = tools::boxOf(path, u"Difficult"_s), last = tools::boxOf(path, u"Grüße"_s);
  EXPECT_NEAR(first.left(), 50, 0.1);
  EXPECT_NEAR(last.right(), 50 + measured.width(), 0.3);
  EXPECT_NEAR(first.top(), 25, 1.5);
  EXPECT_NEAR(first.height(), measured.height(), 1.5);
  EXPECT_EQ(createTextMeasure()->sizeOfText(title, font), measured);
  const QString fonts = tools::run(u"pdffonts"_s, {path}).output;
  EXPECT_EQ(fonts.count(u"LiberationSans"_s), 1);
  EXPECT_LT(QFileInfo(path).size(), 60'000) << "only the glyphs that are used";
  EXPECT_THAT(fonts.toStdString(),
              testing::ContainsRegex("LiberationSans +CID TrueType +Identity-H +yes"));
}

/// The border stands upright at the same place of the page as it is shown, whatever its boxes and
/// turns.
class TurnedPages : public testing::TestWithParam<QString> {};

TEST_P(TurnedPages, HaveTheirBorderUpright) {
  const QString input = samples::fromObjects(
      {u"<< /Type /Catalog /Pages 2 0 R >>"_s, u"<< /Type /Pages /Count 1 /Kids [3 0 R] >>"_s,
       u"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 500 700] /CropBox [50.5 20 350 420] /Contents 4 0 R %1 >>"_s
           .arg(GetParam()),
       u"<< /Length 22 >>\nstream\nq 0.1 0 0 0.1 50 50 cm\nendstream"_s});
  const QString path = bordered(input, [](PageCanvas& canvas, int, QSizeF page) {
    canvas.drawText(u"corner"_s, font, QRectF(30, 40, 100, 20), LineBreaking::None);
    const QSizeF size = canvas.sizeOfText(u"opposite"_s, font);
    canvas.drawText(
        u"opposite"_s, font,
        QRectF(QPointF(page.width() - size.width(), page.height() - size.height()), size),
        LineBreaking::None);
  });
  // Poppler does not apply user units to what it shows.
  const double unit = GetParam().contains(u"UserUnit"_s) ? 2 : 1;
  const QSizeF shown = documentFacts(path)->pageSizes[0] / unit;
  const QRectF corner = tools::boxOf(path, u"corner"_s),
               opposite = tools::boxOf(path, u"opposite"_s);
  EXPECT_NEAR(corner.left(), 30 / unit, 0.2);
  EXPECT_NEAR(corner.top(), 41 / unit, 1.5);
  EXPECT_GT(corner.width(), corner.height()) << "lies on its side";
  EXPECT_NEAR(opposite.right(), shown.width(), 0.3);
  EXPECT_NEAR(opposite.bottom(), shown.height(), 1.5);
}

INSTANTIATE_TEST_SUITE_P(Turns, TurnedPages,
                         testing::Values(u""_s, u"/Rotate 90"_s, u"/Rotate 180"_s, u"/Rotate 270"_s,
                                         u"/Rotate -90"_s, u"/UserUnit 2"_s,
                                         u"/Rotate 90 /UserUnit 2"_s));

TEST(Borders, LinesThatDoNotFitAreLeftOut) {
  const QString path = bordered(samples::pages({u"body"_s}), [](PageCanvas& canvas, int, QSizeF) {
    const double line = canvas.sizeOfText(u"x"_s, font).height();
    canvas.drawText(u"alpha beta gamma delta"_s, font, QRectF(50, 50, 60, line),
                    LineBreaking::Word);
    canvas.drawText(u"one\ntwo\r\nthree"_s, font, QRectF(50, 100, 100, 2.2 * line),
                    LineBreaking::Word);
    canvas.drawText(u"negative"_s, font, QRectF(50, 200, 100, -5), LineBreaking::Word);
    canvas.drawText(u"narrow"_s, font, QRectF(50, 200, 0, 20), LineBreaking::Word);
    canvas.drawText(u"sizeless"_s, {font.name, 0}, QRectF(50, 200, 100, 20), LineBreaking::Word);
    canvas.drawText(QString(), font, QRectF(50, 200, 100, 20), LineBreaking::Word);
    canvas.drawText(QString(200, u'W'), font, QRectF(50, 300, 100, line), LineBreaking::None);
  });
  const QString text = tools::text(path, {u"-raw"_s});
  EXPECT_TRUE(text.startsWith(u"body alpha beta one two W"_s)) << qPrintable(text);
  for (const char* left : {"gamma", "three", "negative", "narrow", "sizeless"})
    EXPECT_FALSE(text.contains(QLatin1StringView(left))) << left;
  const QImage page = tools::pixels(path, 72);
  for (int x = 151; x < 612; ++x)
    ASSERT_EQ(page.pixel(x, 306), qRgb(255, 255, 255)) << "drawn beside its rectangle at " << x;
  EXPECT_EQ(createTextMeasure()->sizeOfText(u"text"_s, {font.name, -1}), QSizeF(0, 0));
}

TEST(Borders, TheDocumentKeepsWhatItHas) {
  const QString input = samples::fromObjects(
      {u"<< /Type /Catalog /Pages 2 0 R /Outlines 5 0 R /MarkInfo << /Marked true >> /StructTreeRoot 7 0 R >>"_s,
       u"<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /MediaBox [0 0 300 200] /Resources << "
       u"/XObject << /Border1 8 0 R >> "
       u">> >>"_s,
       u"<< /Type /Page /Parent 2 0 R /Annots [<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest [4 0 R /Fit] >>] >>"_s,
       u"<< /Type /Page /Parent 2 0 R >>"_s,
       u"<< /Type /Outlines /First 6 0 R /Last 6 0 R /Count 1 >>"_s,
       u"<< /Title (Chapter) /Parent 5 0 R /Dest [4 0 R /Fit] >>"_s,
       u"<< /Type /StructTreeRoot /K [] >>"_s,
       u"<< /Type /XObject /Subtype /Form /BBox [0 0 1 1] /Length 0 >>\nstream\n\nendstream"_s});
  std::vector<int> calls;
  const MaybeError error =
      drawPageBorders(input, input, [&calls](PageCanvas& canvas, int index, QSizeF) {
        calls.push_back(index);
        if (index == 1)
          canvas.drawText(u"second"_s, font, QRectF(10, 10, 100, 20), LineBreaking::None);
      });
  ASSERT_FALSE(error);
  EXPECT_THAT(calls, testing::ElementsAre(0, 1));
  const auto document = inspect::open(input);
  EXPECT_THAT(inspect::linkTargets(*document),
              testing::ElementsAre(testing::ElementsAre(2), testing::ElementsAre()));
  EXPECT_EQ(inspect::outline(*document).size(), 1u);
  EXPECT_TRUE(documentFacts(input)->isTagged);
  EXPECT_EQ(tools::words(input).size(), 1u);
  EXPECT_EQ(tools::words(input)[0].page, 2);
  QPDFObjectHandle second = document->getAllPages().at(1);
  EXPECT_EQ(second.getKey("/Resources").getKey("/XObject").getKeys().size(), 2u)
      << "a name that was taken";
}

TEST(Borders, FilesOfEveryFormTakeThemMoreThanOnce) {
  const QString plain = samples::pages({u"one"_s, u"two"_s});
  const QString compact = tools::fresh(u"compact.pdf"_s);
  tools::run(u"qpdf"_s, {u"--object-streams=generate"_s, plain, compact});
  for (const QString& input : {plain, compact}) {
    QString path = input;
    for (const QString& word : {u"first"_s, u"again"_s}) {
      path = bordered(path, [&](PageCanvas& canvas, int, QSizeF) {
        canvas.drawText(word, font, QRectF(50, word == u"first" ? 20 : 60, 100, 20),
                        LineBreaking::None);
      });
    }
    EXPECT_EQ(tools::text(path, {u"-raw"_s}), u"one first again two first again"_s);
  }
}

TEST(Borders, FailuresLeaveNoFile) {
  const auto nothing = [](PageCanvas&, int, QSizeF) { FAIL() << "there is no page to draw"; };
  for (const QString& input : {u"/no/such.pdf"_s, tools::file(u"bad.pdf"_s, "%PDF-1.7 bad"),
                               samples::encrypted(samples::pages({u"x"_s}), u"secret"_s)}) {
    const QString output = tools::fresh(u"out.pdf"_s);
    EXPECT_TRUE(drawPageBorders(input, output, nothing));
    EXPECT_FALSE(QFile::exists(output));
  }
}

}  // namespace
