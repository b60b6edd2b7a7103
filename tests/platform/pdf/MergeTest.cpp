#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Inspect.h"
#include "Merging.h"
#include "Samples.h"
#include "Tools.h"
#include "platform/pdf/DocumentFacts.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using tools::merge;
using tools::Merged;

namespace {

QString content(const QString& operators) {
  return u"<< /Length %1 >>\nstream\n%2\nendstream"_s.arg(operators.toUtf8().size()).arg(operators);
}

using samples::twoPages;

TEST(Merge, KeepsPageOrderSizesAndRotation) {
  const QString turned = twoPages(u""_s, u"/Rotate 90"_s,
                                  u"/MediaBox [10 10 110 60] /CropBox [20 20 60 50] /UserUnit 2"_s);
  const Merged merged =
      merge({samples::pages({u"one"_s, u"two"_s}), turned, samples::pages({u"three"_s})});
  const auto facts = pdf::documentFacts(merged.path);
  ASSERT_TRUE(facts);
  EXPECT_THAT(facts->pageSizes, ElementsAre(QSizeF(612, 792), QSizeF(612, 792), QSizeF(200, 300),
                                            QSizeF(80, 60), QSizeF(612, 792)));
  EXPECT_EQ(tools::text(merged.path), u"one two three"_s);
}

TEST(Merge, LinksAndNamedDestinationsLeadWithinTheirOwnDocument) {
  const QString oldStyle = twoPages(
      u"/Dests << /place [4 0 R /Fit] /own [3 0 R /Fit] >>"_s, u"/Annots [5 0 R 6 0 R]"_s, u""_s,
      {u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest /place >>"_s,
       u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A << /S /GoTo /D /own >> >>"_s});
  const QString tree = twoPages(
      u"/Names << /Dests << /Kids [<< /Limits [(a\\(\\)) (place)] /Names [(a\\(\\)) [4 0 R /Fit] "
      u"(place) << /D [3 0 R "
      u"/Fit] >>] >>] >> >>"_s,
      u"/Annots [5 0 R]"_s, u"/Annots [6 0 R 7 0 R]"_s,
      {u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest (a\\(\\)) >>"_s,
       u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A << /S /GoTo /D (place) >> >>"_s,
       u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest [3 0 R /Fit] >>"_s});
  // Names that only an earlier document knows.
  const QString dead =
      twoPages(u""_s, u"/Annots [5 0 R 6 0 R]"_s, u""_s,
               {u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest (place) >>"_s,
                u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A << /S /GoTo /D /own >> >>"_s});
  const Merged merged = merge({oldStyle, tree, dead, oldStyle});
  const auto document = inspect::open(merged.path);
  EXPECT_THAT(inspect::linkTargets(*document),
              ElementsAre(ElementsAre(2, 1), ElementsAre(), ElementsAre(4), ElementsAre(3, 3),
                          ElementsAre(0, 0), ElementsAre(), ElementsAre(8, 7), ElementsAre()));
  const QString listed = tools::run(u"pdfinfo"_s, {u"-dests"_s, merged.path}).output;
  EXPECT_EQ(listed.count(u'"') / 2, 6) << qPrintable(listed);
}

QString withOutline(const QString& second) {
  return twoPages(
      u"/Outlines 5 0 R"_s, u""_s, u""_s,
      {u"<< /Type /Outlines /First 6 0 R /Last 7 0 R /Count 3 >>"_s,
       u"<< /Title (A) /Parent 5 0 R /Next 7 0 R /First 8 0 R /Last 8 0 R /Count 1 /Dest [3 0 R /Fit] >>"_s,
       u"<< /Title (B) /Parent 5 0 R /Prev 6 0 R /A << /S /GoTo /D [4 0 R /Fit] >> %1 >>"_s.arg(
           second),
       u"<< /Title (A1) /Parent 6 0 R /Dest [4 0 R /Fit] >>"_s, u"<< /Title (Its title) >>"_s},
      u"/Info 9 0 R"_s);
}

TEST(Merge, EachDocumentsOutlineStandsUnderItsHeading) {
  const Merged merged =
      merge({withOutline(u""_s), samples::pages({u"plain"_s}), withOutline(u""_s)},
            {u"Häuser"_s, u""_s, u""_s});
  const auto document = inspect::open(merged.path);
  std::vector<std::string> items;
  for (const inspect::OutlineItem& item : inspect::outline(*document)) {
    items.push_back(std::string(static_cast<size_t>(item.depth), '>') + item.title +
                    std::to_string(item.page));
  }
  EXPECT_THAT(items, ElementsAre("Häuser1", ">A1", ">>A12", ">B2", "Sample3", "Its title4", ">A4",
                                 ">>A15", ">B5"));
  QPDFObjectHandle heading = document->getRoot().getKey("/Outlines").getKey("/First");
  EXPECT_EQ(heading.getKey("/Count").getIntValue(), -3) << "closed, with what opens";
}

TEST(Merge, AnOutlineThatGoesInARingIsLeftOut) {
  const Merged merged = merge({withOutline(u"/Next 6 0 R"_s), withOutline(u"/First 5 0 R"_s)});
  const auto document = inspect::open(merged.path);
  EXPECT_EQ(inspect::outline(*document).size(), 2u);
}

/// A page that shows a picture and a text in a standard font through objects of its own.
QString withResources(const QString& picture) {
  return twoPages(
      u""_s, u"/Contents 5 0 R /Resources << /XObject << /I 6 0 R >> /Font << /F 7 0 R >> >>"_s,
      u"/Contents 8 0 R /Resources << /XObject << /I 6 0 R >> >>"_s,
      {content(u"/I Do BT /F 20 Tf (text) Tj ET"_s),
       u"<< /Type /XObject /Subtype /Image /Width 2 /Height 1 /ColorSpace /DeviceGray "
       u"/BitsPerComponent 8 "
       u"/Length 2 >>\nstream\n%1\nendstream"_s.arg(picture),
       u"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /FontDescriptor 9 0 R >>"_s,
       content(u"/I Do"_s), u"<< /Type /FontDescriptor /FontName /Helvetica /Flags 32 >>"_s});
}

TEST(Merge, EqualResourcesAreStoredOnceAndUnequalOnesApart) {
  const Merged merged =
      merge({withResources(u"ab"_s), withResources(u"ab"_s), withResources(u"ac"_s)});
  const auto document = inspect::open(merged.path);
  std::vector<QPDFObjectHandle> pages = document->getAllPages();
  const auto resource = [&pages](size_t page, const char* kind, const char* name) {
    QPDFObjectHandle resources = pages.at(page).getKey("/Resources");
    return resources.getKey(kind).getKey(name).getObjGen();
  };
  EXPECT_EQ(resource(0, "/XObject", "/I"), resource(2, "/XObject", "/I"));
  EXPECT_EQ(resource(0, "/XObject", "/I"), resource(3, "/XObject", "/I"));
  EXPECT_NE(resource(0, "/XObject", "/I"), resource(4, "/XObject", "/I"));
  EXPECT_EQ(resource(0, "/Font", "/F"), resource(4, "/Font", "/F"));
}

QString tagged(const QString& language, const QString& meaning) {
  return twoPages(
      u"/Lang (%1) /MarkInfo << /Marked true >> /StructTreeRoot 5 0 R"_s.arg(language),
      u"/StructParents 0"_s, u"/StructParents 1 /Annots [10 0 R]"_s,
      {u"<< /Type /StructTreeRoot /K 6 0 R /ParentTree << /Nums [0 [7 0 R] 1 [8 0 R] 2 9 0 R] >> "
       u"/ParentTreeNextKey 3 "
       u"/RoleMap << /Special /%1 >> /IDTree << /Names [(cell) 8 0 R] >> >>"_s.arg(meaning),
       u"<< /Type /StructElem /S /Document /P 5 0 R /K [7 0 R 8 0 R 9 0 R] >>"_s,
       u"<< /Type /StructElem /S /Special /P 6 0 R /Pg 3 0 R /K 0 >>"_s,
       u"<< /Type /StructElem /S /TD /P 6 0 R /Pg 4 0 R /K 0 /ID (cell) /A << /O /Table /Headers [(cell)] >> >>"_s,
       u"<< /Type /StructElem /S /Link /P 6 0 R /Pg 4 0 R /K << /Type /OBJR /Obj 10 0 R >> >>"_s,
       u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /StructParent 2 /Dest [3 0 R /Fit] >>"_s});
}

TEST(Merge, TagsAreJoinedAndWhatClashesIsRenamed) {
  const Merged merged =
      merge({tagged(u"en"_s, u"P"_s), samples::pages({u"untagged"_s}), tagged(u"de"_s, u"H1"_s)});
  const auto document = inspect::open(merged.path);
  EXPECT_EQ(inspect::tagComplaints(*document), "");
  QPDFObjectHandle root = document->getRoot().getKey("/StructTreeRoot");
  ASSERT_EQ(root.getKey("/K").getArrayNItems(), 2);
  QPDFObjectHandle german = root.getKey("/K").getArrayItem(1);
  EXPECT_EQ(german.getKey("/Lang").getUTF8Value(), "de");
  EXPECT_EQ(document->getRoot().getKey("/Lang").getUTF8Value(), "en");
  const std::string role = german.getKey("/K").getArrayItem(0).getKey("/S").getName();
  EXPECT_NE(role, "/Special");
  EXPECT_EQ(root.getKey("/RoleMap").getKey(role).getName(), "/H1");
  EXPECT_EQ(root.getKey("/RoleMap").getKey("/Special").getName(), "/P");
  QPDFObjectHandle cell = german.getKey("/K").getArrayItem(1);
  EXPECT_NE(cell.getKey("/ID").getStringValue(), "cell");
  EXPECT_EQ(cell.getKey("/A").getKey("/Headers").getArrayItem(0).getStringValue(),
            cell.getKey("/ID").getStringValue());
  std::vector<QPDFObjectHandle> pages = document->getAllPages();
  QPDFObjectHandle annotation = pages.at(4).getKey("/Annots").getArrayItem(0);
  QPDFObjectHandle reference = german.getKey("/K").getArrayItem(2).getKey("/K").getKey("/Obj");
  EXPECT_EQ(annotation.getObjGen(), reference.getObjGen());
  EXPECT_EQ(annotation.getKey("/StructParent").getIntValue(), 5);
}

TEST(Merge, FormFieldsStayAsTheyLook) {
  const QString form = twoPages(
      u"/AcroForm << /Fields [5 0 R 8 0 R] >>"_s, u"/Annots [5 0 R 7 0 R 8 0 R] /Resources << >>"_s,
      u""_s,
      {u"<< /Type /Annot /Subtype /Widget /FT /Tx /T (a) /F 4 /Rect [100 50 200 150] /P 3 0 R /AP << /N 6 0 R >> >>"_s,
       u"<< /Type /XObject /Subtype /Form /BBox [0 0 100 100] /Resources << >> /Length 29 "
       u">>\nstream\n1 0 0 rg 0 0 100 "
       u"100 re f    \nendstream"_s,
       u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest [4 0 R /Fit] >>"_s,
       u"<< /Type /Annot /Subtype /Widget /FT /Tx /T (b) /F 2 /Rect [0 100 50 150] /P 3 0 R /AP << /N 6 0 R >> >>"_s});
  const Merged merged = merge({form, form});
  const auto document = inspect::open(merged.path);
  EXPECT_FALSE(document->getRoot().hasKey("/AcroForm"));
  EXPECT_THAT(inspect::linkTargets(*document),
              ElementsAre(ElementsAre(2), ElementsAre(), ElementsAre(4), ElementsAre()));
  const QImage page = tools::pixels(merged.path, 72, 3);
  EXPECT_EQ(page.pixel(150, 100), qRgb(255, 0, 0));
  EXPECT_EQ(page.pixel(20, 80), qRgb(255, 255, 255)) << "a hidden field";
}

TEST(Merge, HiddenLayersStayHidden) {
  const auto layered = [](const QString& configuration) {
    return twoPages(
        u"/OCProperties << /OCGs [6 0 R 7 0 R] /D << %1 >> >>"_s.arg(configuration),
        u"/Contents 5 0 R /Resources << /Properties << /A 6 0 R /B 7 0 R >> >>"_s, u""_s,
        {content(
             u"/OC /A BDC 1 0 0 rg 0 0 150 200 re f EMC /OC /B BDC 0 0 1 rg 150 0 150 200 re f EMC"_s),
         u"<< /Type /OCG /Name (A) >>"_s, u"<< /Type /OCG /Name (B) >>"_s});
  };
  const Merged merged =
      merge({layered(u"/OFF [6 0 R]"_s), layered(u"/BaseState /OFF /ON [6 0 R]"_s)});
  const QRgb white = qRgb(255, 255, 255);
  EXPECT_EQ(tools::pixels(merged.path, 72, 1).pixel(75, 100), white);
  EXPECT_EQ(tools::pixels(merged.path, 72, 1).pixel(225, 100), qRgb(0, 0, 255));
  EXPECT_EQ(tools::pixels(merged.path, 72, 3).pixel(75, 100), qRgb(255, 0, 0));
  EXPECT_EQ(tools::pixels(merged.path, 72, 3).pixel(225, 100), white);
}

TEST(Merge, PageLabelsAttachmentsAndAttributesAreKept) {
  const QString labelled =
      twoPages(u"/PageLabels << /Nums [0 << /S /r >> 1 << /S /D /St 7 >>] >>"_s, u""_s, u""_s);
  const QString attached = tools::fresh(u"attached.pdf"_s);
  tools::run(u"qpdf"_s, {samples::pages({u"x"_s}), u"--add-attachment"_s,
                         tools::file(u"note.txt"_s, "hello"), u"--key=note"_s, u"--"_s, attached});
  const Merged merged = merge({samples::pages({u"y"_s}), labelled, attached, attached});
  const auto document = inspect::open(merged.path);
  EXPECT_EQ(document->getRoot().getKey("/PageLabels").getKey("/Nums").unparseResolved(),
            "[ 0 << /S /D >> 1 << /S /r >> 2 << /S /D /St 7 >> 3 << /S /D >> 4 << /S /D >> ]");
  EXPECT_EQ(tools::run(u"qpdf"_s, {u"--show-attachment=note-2"_s, merged.path}).output, u"hello"_s);
  EXPECT_EQ(std::get<QString>(
                pdf::documentFacts(merged.path)->attributes[pdf::PDFDocumentTitleAttribute]),
            u"Sample"_s);
}

}  // namespace
