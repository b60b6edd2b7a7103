#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

#include "Inspect.h"
#include "Samples.h"
#include "Tools.h"
#include "platform/pdf/DocumentFacts.h"
#include "platform/pdf/PrintedPages.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

QString content(const QString& entries, const QString& text) {
  return u"<< %1 /Length %2 >>\nstream\n%3\nendstream"_s.arg(entries)
      .arg(text.toUtf8().size())
      .arg(text);
}

/// A page of 200 x 100 points whose every kind of place is known, and a second one.
QString printed() {
  return samples::fromObjects({
      u"<< /Type /Catalog /Pages 2 0 R /Dests 8 0 R /Outlines 9 0 R /StructTreeRoot 11 0 R >>"_s,
      u"<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /MediaBox [0 0 200 100] /Resources 5 0 R >>"_s,
      u"<< /Type /Page /Parent 2 0 R /Contents [6 0 R] /Annots [7 0 R] >>"_s,
      u"<< /Type /Page /Parent 2 0 R /Contents 6 0 R >>"_s,
      u"<< /Pattern << /P1 13 0 R >> /XObject << /X1 14 0 R >> >>"_s,
      content(u""_s, u"/Pattern cs /P1 scn 0 0 100 100 re f /X1 Do"_s),
      u"<< /Type /Annot /Subtype /Link /Rect [10 20 30 40] /QuadPoints [10 20 30 20 10 40 30 40] "
      u"/Dest /place >>"_s,
      u"<< /place [4 0 R /XYZ 15 85 0] /whole [4 0 R /Fit] >>"_s,
      u"<< /First 10 0 R /Last 10 0 R /Count 1 >>"_s,
      u"<< /Title (Chapter) /Parent 9 0 R /Dest [3 0 R /XYZ 50 60 null] >>"_s,
      u"<< /Type /StructTreeRoot /K [12 0 R] >>"_s,
      u"<< /Type /StructElem /S /Figure /P 11 0 R /Pg 3 0 R /A << /O /Layout /BBox [10 10 20 20] >> >>"_s,
      u"<< /Type /Pattern /PatternType 2 /Matrix [2 0 0 2 5 0] /Shading << /ShadingType 2 "
      u"/ColorSpace "
      u"/DeviceRGB /Coords [0 0 50 0] /Function << /FunctionType 2 /Domain [0 1] /N 1 /C0 [1 0 0] "
      u"/C1 [0 0 1] >> /Extend [true true] >> >>"_s,
      content(
          u"/Type /XObject /Subtype /Form /BBox [0 0 9 9] /Resources << /Pattern << /P1 13 0 R >> "
          u">>"_s,
          u""_s),
  });
}

/// Twice as large, 30 from the left and 20 from the top of a paper of 500 x 300.
const pdf::PageFit enlarged{{500, 300}, 1, 2, {30, 20}, 2};

QString fitted(const QString& path, const pdf::PageFit& fit) {
  const auto pages = pdf::PrintedPages::open(path);
  EXPECT_TRUE(pages) << qPrintable(pages ? QString() : pages.error().localizedDescription);
  const QString target = tools::fresh(u"fitted.pdf"_s);
  if (pages) {
    EXPECT_FALSE((*pages)->write(fit, target));
  }
  EXPECT_EQ(tools::complaints(target), QString());
  return target;
}

std::vector<double> numbers(QPDFObjectHandle array) {
  std::vector<double> found;
  for (QPDFObjectHandle& item : array.getArrayAsVector()) {
    if (item.isNumber()) found.push_back(item.getNumericValue());
  }
  return found;
}

TEST(PrintedPages, ADocumentThatFitsIsCopiedAsItIs) {
  const QString path = samples::fromObjects({
      u"<< /Type /Catalog /Pages 2 0 R >>"_s,
      u"<< /Type /Pages /Count 1 /Kids [3 0 R] /MediaBox [0 0 200 100] >>"_s,
      u"<< /Type /Page /Parent 2 0 R /Contents 4 0 R /Resources << >> >>"_s,
      content(u""_s, u"0 0 100 100 re f"_s),
  });
  pdf::PageFit fit;
  fit.paper = {200, 100};
  QFile before(path), after(fitted(path, fit));
  ASSERT_TRUE(before.open(QIODevice::ReadOnly) && after.open(QIODevice::ReadOnly));
  EXPECT_EQ(after.readAll(), before.readAll());
}

TEST(PrintedPages, EveryPlaceMovesWithTheContent) {
  const QString compact = tools::fresh(u"compact.pdf"_s);
  tools::run(u"qpdf"_s, {u"--object-streams=generate"_s, printed(), compact});
  for (const QString& path : {printed(), compact}) {
    const auto document = inspect::open(fitted(path, enlarged));
    const auto pages = document->getAllPages();
    ASSERT_EQ(pages.size(), 2u);
    QPDFObjectHandle page = pages[0];
    QPDFObjectHandle root = document->getRoot();
    EXPECT_THAT(numbers(page.getKey("/MediaBox")), ElementsAre(0, 0, 500, 300));
    // x' = 2 x + 30; y' = 2 y + 300 - 20 - 200.
    QPDFObjectHandle link = page.getKey("/Annots").getArrayItem(0);
    EXPECT_THAT(numbers(link.getKey("/Rect")), ElementsAre(50, 120, 90, 160));
    EXPECT_THAT(numbers(link.getKey("/QuadPoints")),
                ElementsAre(50, 120, 90, 120, 50, 160, 90, 160));
    QPDFObjectHandle item = root.getKey("/Outlines").getKey("/First");
    EXPECT_THAT(numbers(item.getKey("/Dest")), ElementsAre(130, 200));
    QPDFObjectHandle element = root.getKey("/StructTreeRoot").getKey("/K").getArrayItem(0);
    EXPECT_THAT(numbers(element.getKey("/A").getKey("/BBox")), ElementsAre(50, 100, 70, 120));
    // 15 from the left and from the top before the print scale.
    EXPECT_THAT(numbers(root.getKey("/Dests").getKey("/place")), ElementsAre(90, 220, 0));
    EXPECT_TRUE(root.getKey("/Dests").getKey("/whole").getArrayItem(1).isNameAndEquals("/Fit"));
    // A page's pattern lies on the page, that of a form in the form.
    QPDFObjectHandle resources = page.getKey("/Resources");
    QPDFObjectHandle form = resources.getKey("/XObject").getKey("/X1");
    EXPECT_THAT(numbers(resources.getKey("/Pattern").getKey("/P1").getKey("/Matrix")),
                ElementsAre(4, 0, 0, 4, 40, 80));
    EXPECT_THAT(
        numbers(
            form.getDict().getKey("/Resources").getKey("/Pattern").getKey("/P1").getKey("/Matrix")),
        ElementsAre(2, 0, 0, 2, 5, 0));
    EXPECT_THAT(numbers(form.getDict().getKey("/BBox")), ElementsAre(0, 0, 9, 9));
  }
  const QImage page = tools::pixels(fitted(printed(), enlarged), 72);
  EXPECT_EQ(page.pixel(29, 100), qRgb(255, 255, 255));
  EXPECT_GT(qRed(page.pixel(45, 100)), 240);
  EXPECT_GT(qBlue(page.pixel(225, 100)), 200);
  EXPECT_EQ(page.pixel(231, 100), qRgb(255, 255, 255));
}

TEST(PrintedPages, AUserUnitLeavesPlacesAndRaisesTheVersion) {
  const QByteArray older = tools::contents(printed()).replace("%PDF-1.7", "%PDF-1.4");
  const QString path = fitted(tools::file(u"older.pdf"_s, older), {{600, 298.5}, 3, 1, {}, 1});
  const auto facts = pdf::documentFacts(path);
  ASSERT_TRUE(facts);
  EXPECT_THAT(facts->pageSizes, testing::Each(QSizeF(600, 298.5)));
  const auto document = inspect::open(path);
  QPDFObjectHandle page = document->getAllPages().at(1);
  EXPECT_THAT(numbers(page.getKey("/MediaBox")), ElementsAre(0, 0.5, 200, 100))
      << "from the upper edge down";
  QPDFObjectHandle destinations = document->getRoot().getKey("/Dests");
  EXPECT_THAT(numbers(destinations.getKey("/place")), ElementsAre(15, 85, 0));
  EXPECT_TRUE(tools::run(u"pdfinfo"_s, {path}).output.contains(u"PDF version:     1.6"_s));
}

TEST(PrintedPages, FailuresLeaveNoFile) {
  for (const QString& path : {u"/no/such.pdf"_s, tools::file(u"bad.pdf"_s, "%PDF-1.7 bad")})
    EXPECT_FALSE(pdf::PrintedPages::open(path));
  const auto pages = pdf::PrintedPages::open(printed());
  ASSERT_TRUE(pages);
  const QString target = tools::fresh(u"full.pdf"_s);
  MaybeError error;
  tools::onFullDisk(512, [&] { error = (*pages)->write(enlarged, target); });
  ASSERT_TRUE(error);
  EXPECT_FALSE(QFile::exists(target));
}

}  // namespace
