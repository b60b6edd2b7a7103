#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QRandomGenerator>

#include "Inspect.h"
#include "Merging.h"
#include "Samples.h"
#include "Tools.h"
#include "platform/pdf/DocumentFacts.h"
#include "platform/pdf/PDFDocument.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using tools::merge;
using tools::Merged;

namespace {

QString made(const QString& source, const QStringList& options) {
  const QString path = tools::fresh(u"made.pdf"_s);
  tools::run(u"qpdf"_s, options + QStringList{source, path});
  return path;
}

/// Link and place of one document whose objects are easy to find in the bytes.
QString linked() {
  return samples::twoPages(u"/Names << /Dests << /Names [(here) [4 0 R /Fit]] >> >>"_s,
                           u"/Annots [5 0 R] /Contents 6 0 R"_s, u"/Rotate 90"_s,
                           {u"<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest (here) >>"_s,
                            u"<< /Length 7 0 R >>\nstream\n0 0 9 9 re f\nendstream"_s, u"12"_s});
}

QString changed(const QByteArray& before, const QByteArray& after) {
  QByteArray bytes = tools::contents(linked());
  EXPECT_EQ(bytes.count(before), 1) << before.constData();
  return tools::file(u"changed.pdf"_s, bytes.replace(before, after));
}

/// The second page turned further by an update at the file's end.
QString updated() {
  const QByteArray bytes = tools::contents(linked());
  const qsizetype table = bytes.lastIndexOf("xref\n0 ");
  QByteArray update = "4 0 obj\n<< /Type /Page /Parent 2 0 R /Rotate 90 >>\nendobj\n";
  const QByteArray start = QByteArray::number(bytes.size() + update.size());
  update += "xref\n4 1\n" + QByteArray::number(bytes.size()).rightJustified(10, '0') +
            " 00000 n \ntrailer << /Root 1 0 R /Size 8 /Prev " + QByteArray::number(table) +
            " >>\nstartxref\n" + start + "\n%%EOF\n";
  return tools::file(u"updated.pdf"_s, bytes + update);
}

TEST(MergeInput, EveryKindOfFileIsJoinedAlike) {
  const QStringList files = {
      linked(),
      made(linked(), {u"--object-streams=generate"_s}),
      made(linked(), {u"--linearize"_s}),
      made(linked(), {u"--linearize"_s, u"--object-streams=generate"_s}),
      made(linked(), {u"--qdf"_s, u"--object-streams=disable"_s}),
      samples::encrypted(linked(), u""_s),
      updated(),
      changed("%PDF-1.7", "junk\n%PDF-1.7"),
      changed("<< /Length 7 0 R >>", "<< /Length 99 >>"),
      changed("3 0 R 4 0 R", "3 0 R % 4 0 R\n4 0 R"),
      changed("/Type /Annot ", "/T#79pe /Annot/ 1"),
      changed("(here) [4", "(h\\145r\\\ne)[4"),
      changed("/Dest (here)", "/Dest <68657265>"),
      changed("/Dest (here)", "/Dest (there) /Dest (here)"),
      changed("[0 0 9 9] /Dest", "[0 0 9 9] /Border [0 0 1-1] /Dest"),
      changed("startxref\n", "startxref\n1"),
  };
  for (const QString& file : files) {
    SCOPED_TRACE(files.indexOf(file));
    const Merged merged = merge({file, file});
    const auto document = inspect::open(merged.path);
    EXPECT_THAT(inspect::linkTargets(*document),
                ElementsAre(ElementsAre(2), ElementsAre(), ElementsAre(4), ElementsAre()));
    const auto facts = pdf::documentFacts(merged.path);
    EXPECT_THAT(facts->pageSizes, ElementsAre(QSizeF(300, 200), QSizeF(200, 300), QSizeF(300, 200),
                                              QSizeF(200, 300)));
    EXPECT_EQ(tools::pixels(merged.path, 72, 3).pixel(4, 195), qRgb(0, 0, 0));
  }
}

TEST(MergeInput, WhatOpensFirstAndTheHighestVersionAreKept) {
  const QString opens =
      samples::twoPages(u"/OpenAction [4 0 R /Fit] /Version /2.0"_s, u""_s, u""_s);
  const auto document = inspect::open(merge({opens, linked()}).path);
  QPDFObjectHandle target = document->getRoot().getKey("/OpenAction").getArrayItem(0);
  EXPECT_EQ(target.getObjGen(), document->getAllPages().at(1).getObjGen());
  EXPECT_EQ(document->getPDFVersion(), "2.0");
}

TEST(MergeInput, FilesThatCannotBeReadAreNamedAndLeftOut) {
  const QString good = samples::pages({u"good"_s});
  const QByteArray bytes = tools::contents(good);
  const QStringList bad = {u"/no/such/file.pdf"_s,
                           tools::file(u"empty.pdf"_s, ""),
                           tools::file(u"text.pdf"_s, "not a PDF at all"),
                           tools::file(u"header.pdf"_s, "%PDF-1.7\n"),
                           samples::encrypted(good, u"secret"_s),
                           samples::fromObjects({u"<< /Type /Catalog /Pages 2 0 R >>"_s,
                                                 u"<< /Type /Pages /Count 0 /Kids [] >>"_s})};
  const QString lostTable = tools::file(u"lost.pdf"_s, bytes.left(bytes.lastIndexOf("xref") - 200));
  const Merged merged = merge(bad + QStringList{good, lostTable, samples::encrypted(good, u""_s)});
  ASSERT_EQ(merged.skipped.size(), static_cast<size_t>(bad.size()));
  for (size_t index = 0; index < merged.skipped.size(); ++index) {
    EXPECT_EQ(merged.skipped[index].path, bad[static_cast<qsizetype>(index)]);
    EXPECT_FALSE(merged.skipped[index].reason.localizedDescription.isEmpty());
  }
  EXPECT_EQ(merged.skipped[4].reason.code, pdf::PDFErrorEncrypted);
  EXPECT_EQ(merged.skipped[5].reason.code, pdf::PDFErrorNoPages);
  EXPECT_EQ(tools::text(merged.path), u"good good good"_s);

  const QString none = tools::fresh(u"none.pdf"_s);
  EXPECT_FALSE(pdf::mergeDocuments({{bad[0], {}}, {bad[2], {}}}, none));
  EXPECT_FALSE(pdf::mergeDocuments({}, none));
  EXPECT_FALSE(QFile::exists(none));
}

TEST(MergeInput, MoreDocumentsThanFilesMayBeOpen) {
  const QStringList many(1100, samples::twoPages(u""_s, u""_s, u""_s));
  EXPECT_EQ(pdf::documentFacts(merge(many).path)->pageCount(), 2200);
}

TEST(MergeInput, DamagedBytesNeverSpoilTheOthers) {
  const QString good = samples::pages({u"good"_s});
  const QByteArray whole[] = {tools::contents(linked()),
                              tools::contents(made(linked(), {u"--object-streams=generate"_s}))};
  QRandomGenerator random(7);
  for (int round = 0; round < 120; ++round) {
    QByteArray bytes = whole[round % 2];
    for (int change = 0; change <= round % 5; ++change) {
      bytes[random.bounded(static_cast<int>(bytes.size()))] =
          round % 3 == 0 ? "0<>[]()/"[random.bounded(8)] : static_cast<char>(random.bounded(256));
    }
    if (round % 7 == 0) bytes.truncate(random.bounded(static_cast<int>(bytes.size())));
    const QString path = tools::fresh(u"joined.pdf"_s);
    const auto skipped =
        pdf::mergeDocuments({{tools::file(u"bad.pdf"_s, bytes), {}}, {good, {}}}, path);
    ASSERT_TRUE(skipped) << round;
    const auto document = inspect::open(path);
    QPDFObjectHandle last = document->getAllPages().back();
    EXPECT_TRUE(last.getKey("/Contents").isStream()) << round;
  }
}

TEST(MergeInput, AFileThatCannotBeWrittenLeavesTheOldOne) {
  const QString old = samples::pages({u"old"_s});
  const pdf::MergeSource source{old, {}};
  EXPECT_EQ(pdf::mergeDocuments({source}, u"/no/such/folder/joined.pdf"_s).error().code,
            pdf::PDFErrorWrite);
  tools::onFullDisk(2000, [&] {
    const auto skipped = pdf::mergeDocuments({source, source}, old);
    ASSERT_FALSE(skipped);
    EXPECT_EQ(skipped.error().code, pdf::PDFErrorWrite);
  });
  EXPECT_EQ(tools::text(old), u"old"_s);
  EXPECT_TRUE(pdf::mergeDocuments({source, source}, old));
  EXPECT_EQ(tools::text(old), u"old old"_s) << "a source can be the target";
}

}  // namespace
