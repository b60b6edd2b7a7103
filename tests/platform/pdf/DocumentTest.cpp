#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTimeZone>

#include "Inspect.h"
#include "Samples.h"
#include "Tools.h"
#include "platform/pdf/DocumentFacts.h"
#include "platform/pdf/PDFDocument.h"

using namespace Qt::StringLiterals;
using namespace pdf;

namespace {

std::shared_ptr<PDFDocument> opened(const QString& path) {
  const auto document = PDFDocument::open(path);
  EXPECT_TRUE(document) << qPrintable(document ? QString() : document.error().localizedDescription);
  return document.value_or(nullptr);
}

QString written(const PDFDocument& document) {
  const QString path = tools::fresh(u"written.pdf"_s);
  const MaybeError error = document.writeToFile(path);
  EXPECT_FALSE(error) << qPrintable(error ? error->localizedDescription : QString());
  EXPECT_EQ(tools::complaints(path), QString());
  return path;
}

TEST(Document, OpensWhatCanBeReadAndSaysWhyNot) {
  const QString good = samples::pages({u"one"_s, u"two"_s});
  const QByteArray bytes = tools::contents(good);
  QByteArray wrongTable = bytes;
  wrongTable.replace("startxref\n", "startxref\n9");
  struct Case {
    const char* name;
    QString path;
    int pages;
    int code;
  };
  for (const Case& file :
       {Case{"whole", good, 2, 0}, Case{"wrong table", tools::file(u"a.pdf"_s, wrongTable), 2, 0},
        Case{"bytes before the header", tools::file(u"b.pdf"_s, "HTTP/1.1 200 OK\n\n" + bytes), 2,
             0},
        Case{"cut before its table",
             tools::file(u"c.pdf"_s, bytes.left(bytes.lastIndexOf("xref\n") - 30)), 2, 0},
        Case{"empty password", samples::encrypted(good, u""_s), 2, 0},
        Case{"password", samples::encrypted(good, u"secret"_s), 0, PDFErrorEncrypted},
        Case{"missing", u"/no/such.pdf"_s, 0, PDFErrorUnreadable},
        Case{"empty", tools::file(u"d.pdf"_s, ""), 0, PDFErrorUnreadable},
        Case{"other kind", tools::file(u"e.pdf"_s, QByteArray(100'000, 'x')), 0,
             PDFErrorUnreadable},
        Case{"header only", tools::file(u"f.pdf"_s, "%PDF-1.4\n"), 0, PDFErrorUnreadable},
        Case{"folder", u"/tmp"_s, 0, PDFErrorUnreadable}}) {
    const auto facts = documentFacts(file.path);
    ASSERT_EQ(facts.has_value(), file.code == 0)
        << file.name << ": " << (facts ? "" : qPrintable(facts.error().localizedDescription));
    if (facts) {
      EXPECT_EQ(facts->pageCount(), file.pages) << file.name;
      continue;
    }
    EXPECT_EQ(facts.error().code, file.code) << file.name;
    EXPECT_THAT(facts.error().localizedDescription.toStdString(),
                testing::HasSubstr(file.path.toStdString()));
  }
}

TEST(Document, BytesThatAreDamagedAtRandomNeverCrash) {
  const QByteArray bytes = tools::contents(samples::pages({u"one"_s, u"two"_s, u"three"_s}));
  quint32 state = 7;
  const auto random = [&state] { return state = state * 1664525 + 1013904223, state >> 8; };
  int readable = 0;
  for (int round = 0; round < 150; ++round) {
    QByteArray damaged = bytes;
    for (int change = 0; change < 20; ++change)
      damaged[static_cast<qsizetype>(random() % static_cast<quint32>(bytes.size()))] =
          static_cast<char>(random());
    const auto document = PDFDocument::open(tools::file(u"damaged.pdf"_s, damaged));
    if (!document || (*document)->pageCount() == 0) continue;
    const QString path = tools::fresh(u"mended.pdf"_s);
    if (!(*document)->writeToFile(path)) readable += QFile::exists(path) ? 1 : 0;
  }
  EXPECT_GT(readable, 20);
}

TEST(Document, AttributesAreReplacedForAllReadersAlike) {
  const auto document = opened(samples::pages({u"one"_s}));
  const QDateTime date(QDate(2026, 11, 22), QTime(20, 34, 2), QTimeZone(-12600));
  document->setDocumentAttributes({{PDFDocumentTitleAttribute, u"Grüße <&> 网页 \x1 😀"_s},
                                   {PDFDocumentCreatorAttribute, u"http://localhost/?a=1&b=(2)"_s},
                                   {PDFDocumentProducerAttribute, u"Corvalis"_s},
                                   {PDFDocumentCreationDateAttribute, date}});
  const QString path = written(*document);
  const QString information = tools::run(u"pdfinfo"_s, {u"-rawdates"_s, path}).output;
  EXPECT_TRUE(information.contains(u"Grüße <&> 网页"_s)) << qPrintable(information);
  EXPECT_TRUE(information.contains(u"D:20261122203402-03'30'"_s)) << qPrintable(information);
  EXPECT_FALSE(information.contains(u"Qt"_s)) << "what was there before is gone";
  const QString packet = tools::run(u"pdfinfo"_s, {u"-meta"_s, path}).output;
  for (const QString& part :
       {u"Grüße &lt;&amp;&gt; 网页"_s, u"2026-11-22T20:34:02-03:30"_s,
        u"<xmp:CreatorTool>http://localhost/?a=1&amp;b=(2)</xmp:CreatorTool>"_s,
        u"<pdf:Producer>Corvalis</pdf:Producer>"_s}) {
    EXPECT_TRUE(packet.contains(part)) << qPrintable(part) << qPrintable(packet);
  }
  const DocumentAttributes attributes = opened(path)->documentAttributes();
  EXPECT_EQ(attributes.size(), 4u);
  EXPECT_EQ(std::get<QDateTime>(attributes.at(PDFDocumentCreationDateAttribute)), date);
}

TEST(Document, ADateGivenAsTextIsStoredInTheFormReadersKnow) {
  const auto document = opened(samples::pages({u"one"_s}));
  document->setDocumentAttributes(
      {{PDFDocumentCreationDateAttribute, u"2026-11-22 20:34:02 +0100"_s}});
  EXPECT_EQ(inspect::open(written(*document))
                ->getTrailer()
                .getKey("/Info")
                .getKey("/CreationDate")
                .getStringValue(),
            "D:20261122203402+01'00'");
  document->setDocumentAttributes({{PDFDocumentCreationDateAttribute, u"yesterday"_s}});
  EXPECT_TRUE(document->documentAttributes().empty());
}

TEST(Document, PagesAreInsertedAnywhere) {
  const auto target = opened(samples::pages({u"A"_s, u"B"_s}));
  {
    const auto other = opened(samples::pages({u"C"_s, u"D"_s}));
    EXPECT_FALSE(target->insertPageFrom(*other, 1, 0));
    EXPECT_FALSE(target->insertPageFrom(*other, 0, 3));
    EXPECT_FALSE(target->insertPageFrom(*target, 1, 2));
    for (const auto& [page, at] :
         {std::pair(2, 0), std::pair(-1, 0), std::pair(0, 6), std::pair(0, -1)}) {
      const MaybeError error = target->insertPageFrom(*other, page, at);
      ASSERT_TRUE(error);
      EXPECT_EQ(error->code, PDFErrorArgument);
    }
  }
  EXPECT_EQ(target->pageCount(), 5);
  EXPECT_EQ(tools::text(written(*target)), u"D A A B C"_s);
}

TEST(Document, WritesOverItsOwnFileAndNeverHalf) {
  const QString path = samples::pages({u"one"_s, u"two"_s});
  const auto document = opened(path);
  EXPECT_FALSE(document->writeToURL(QUrl::fromLocalFile(path)));
  EXPECT_EQ(tools::text(path), u"one two"_s);

  const auto failed = document->writeToFile(u"/no/such/folder/x.pdf"_s);
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->code, PDFErrorWrite);
  EXPECT_EQ(PDFDocument::createEmpty()->writeToFile(tools::fresh(u"none.pdf"_s))->code,
            PDFErrorNoPages);

  MaybeError full;
  tools::onFullDisk(2000, [&] { full = document->writeToFile(path); });
  ASSERT_TRUE(full);
  EXPECT_EQ(full->code, PDFErrorWrite);
  EXPECT_EQ(tools::text(path), u"one two"_s) << "the file that was there stays";
}

}  // namespace
