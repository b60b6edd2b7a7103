#include <QDir>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>

#include "EntryFixture.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/pdf/DocumentFacts.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using support::waitFor;

namespace {

class Processing : public EntryFixture {
 protected:
  std::shared_ptr<CVURLEntry> prepared(const QString& markup) {
    auto entry = entryFor(page(markup));
    EXPECT_FALSE(prepare(entry));
    return entry;
  }
  QString result(const QString& name) const { return output.filePath(name); }
  int leftovers() const {
    return static_cast<int>(QDir(utils->getDownloadsDirectory().toLocalFile())
                                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot)
                                .size());
  }

  const QString twoBands =
      u"<!DOCTYPE html><title>Bands</title><body style='margin:0'>"
      "<div style='height:1500px;background:#f00'>upper words</div>"
      "<div style='height:1500px;background:#00f'>lower words</div>"_s;
};

QString textOf(const QString& pdf, const QStringList& options = {}) {
  QProcess tool;
  tool.start(u"pdftotext"_s, options + QStringList{pdf, u"-"_s});
  EXPECT_TRUE(tool.waitForFinished());
  return QString::fromUtf8(tool.readAllStandardOutput());
}

TEST_F(Processing, EveryPictureFormatShowsTheWholePage) {
  utils->deleteDownloadsDirectory();
  struct Row {
    QString format;
    QString file;
  };
  for (const Row& row : {Row{u"PNG"_s, u"Bands.png"_s}, Row{u"JPEG"_s, u"Bands.jpg"_s},
                         Row{u"BMP"_s, u"Bands.bmp"_s}, Row{u"GIF"_s, u"Bands.gif"_s}}) {
    SCOPED_TRACE(row.format.toStdString());
    settings->setFormat(row.format);
    const auto entry = prepared(twoBands);
    ASSERT_FALSE(process(entry));
    EXPECT_EQ(entry->state(), CVEntryStateDone);
    EXPECT_TRUE(entry->canBeRevealed());
    EXPECT_EQ(entry->resultLocation(), QUrl::fromLocalFile(result(row.file)));
    const QImage picture(result(row.file));
    ASSERT_EQ(picture.size(), QSize(1024, 3000));
    EXPECT_GT(picture.pixelColor(500, 1490).red(), 240);
    EXPECT_GT(picture.pixelColor(500, 1510).blue(), 240);
  }
  EXPECT_EQ(leftovers(), 0);
}

TEST_F(Processing, AVectorDocumentIsOnePageWithItsWordsAndAttributes) {
  settings->setConversionMode(u"Vector"_s);
  const auto entry = prepared(twoBands);
  ASSERT_FALSE(process(entry));
  const auto facts = pdf::documentFacts(result(u"Bands.pdf"_s));
  ASSERT_TRUE(facts);
  ASSERT_EQ(facts->pageCount(), 1);
  EXPECT_NEAR(facts->pageSizes[0].width(), 1024, 1);
  EXPECT_NEAR(facts->pageSizes[0].height(), 3000, 1);
  const auto attribute = [&](pdf::PDFDocumentAttribute name) {
    return std::get<QString>(facts->attributes.at(name));
  };
  const QString address = entry->currentURL()->toString();
  EXPECT_EQ(attribute(pdf::PDFDocumentTitleAttribute), u"Bands"_s);
  EXPECT_EQ(attribute(pdf::PDFDocumentAuthorAttribute), address);
  EXPECT_EQ(attribute(pdf::PDFDocumentSubjectAttribute), address);
  EXPECT_EQ(attribute(pdf::PDFDocumentCreatorAttribute), address);
  EXPECT_EQ(attribute(pdf::PDFDocumentProducerAttribute), u"Corvalis"_s);
  EXPECT_TRUE(textOf(result(u"Bands.pdf"_s)).contains("lower words"_L1));
}

TEST_F(Processing, APictureDocumentIsHalfAsLargeAndSearchable) {
  settings->setConversionMode(u"Image"_s);
  ASSERT_FALSE(process(prepared(twoBands)));
  const auto facts = pdf::documentFacts(result(u"Bands.pdf"_s));
  ASSERT_TRUE(facts);
  ASSERT_EQ(facts->pageCount(), 1);
  EXPECT_NEAR(facts->pageSizes[0].width(), 512, 1);
  EXPECT_NEAR(facts->pageSizes[0].height(), 1500, 1);
  EXPECT_TRUE(textOf(result(u"Bands.pdf"_s)).contains("upper words"_L1));
}

TEST_F(Processing, PagesCarryHeadersAndFootersInBothModes) {
  settings->setUsePagination(true);
  settings->setIncludeHeadersAndFooters(true);
  settings->setNotes(u"noted"_s);
  for (const QString& mode : {u"Vector"_s, u"Image"_s}) {
    SCOPED_TRACE(mode.toStdString());
    settings->setConversionMode(mode);
    const auto entry = prepared(twoBands);
    ASSERT_FALSE(process(entry));
    const QString file = entry->resultLocation()->toLocalFile();
    const auto facts = pdf::documentFacts(file);
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->pageCount(), 2 + (facts->pageSizes[0].height() < 800));
    const QString text = textOf(file);
    for (const QString& expected :
         {u"Bands"_s, u"noted"_s, u"Page 1"_s, u"Page 2"_s, u"file:///"_s, u"lower words"_s}) {
      EXPECT_TRUE(text.contains(expected)) << qPrintable(expected);
    }
  }
}

/// The borders of a page lie on its paper and are not enlarged with it.
TEST_F(Processing, HeadersAndFootersKeepPlaceAndSizeOnEveryLayout) {
  settings->setUsePagination(true);
  settings->setIncludeHeadersAndFooters(true);
  settings->setConversionMode(u"Vector"_s);
  QStringList borders;
  for (const int width : {200, 320, 1024, 3000}) {
    const auto entry = entryFor(page(twoBands), {}, QSizeF(width, 0));
    ASSERT_FALSE(prepare(entry));
    ASSERT_FALSE(process(entry));
    const QString boxes =
        textOf(entry->resultLocation()->toLocalFile(), {u"-bbox"_s, u"-l"_s, u"1"_s});
    static const QRegularExpression label(u"<page.*|<word.*>(Page|Bands)<.*"_s);
    QString found;
    for (auto matches = label.globalMatch(boxes); matches.hasNext();)
      found += matches.next().captured() + u'\n';
    EXPECT_EQ(found.count(u'\n'), 3) << qPrintable(boxes);
    borders += found;
  }
  EXPECT_EQ(borders.count(borders.first()), borders.size()) << qPrintable(borders.join(u'\n'));
}

TEST_F(Processing, ATallDocumentIsDeliveredWithItsUserUnit) {
  settings->setConversionMode(u"Vector"_s);
  const auto entry = prepared(
      u"<!DOCTYPE html><title>tall</title><body style='margin:0'><div style='height:70000px'></div>last words"_s);
  ASSERT_FALSE(process(entry));
  const QString file = result(u"tall.pdf"_s);
  const auto facts = pdf::documentFacts(file);
  ASSERT_TRUE(facts);
  ASSERT_EQ(facts->pageCount(), 1);
  EXPECT_NEAR(facts->pageSizes[0].width(), 1024, 0.01);
  EXPECT_NEAR(facts->pageSizes[0].height(), 70018, 2);
  EXPECT_EQ(facts->attributes.count(pdf::PDFDocumentProducerAttribute), 1u);
  EXPECT_TRUE(textOf(file).contains(u"last words"_s));
  static const QRegularExpression box(u"page width=\"[0-9.]+\" height=\"14400\\.0+\""_s);
  EXPECT_TRUE(textOf(file, {u"-bbox"_s}).contains(box)) << qPrintable(textOf(file, {u"-bbox"_s}));
}

TEST_F(Processing, AutomaticResultsNeverReplaceAFile) {
  settings->setFormat(u"PNG"_s);
  const auto entry = prepared(u"<p>no title"_s);
  entry->setTitle(std::nullopt);
  ASSERT_FALSE(process(entry));
  ASSERT_FALSE(process(entry));
  EXPECT_EQ(results(), (QStringList{u"Unknown title 2.png"_s, u"Unknown title.png"_s}));
}

TEST_F(Processing, LowPagesGetAUsableCanvas) {
  settings->setFormat(u"PNG"_s);
  const auto entry = prepared(u"<!DOCTYPE html><title>low</title><body style='margin:0'>x"_s);
  ASSERT_FALSE(process(entry));
  EXPECT_EQ(QImage(result(u"low.png"_s)).size(), QSize(1024, 1000));
  settings->setFormat(u"PDF"_s);
  settings->setConversionMode(u"Vector"_s);
  ASSERT_FALSE(process(entry));
  EXPECT_NEAR(pdf::documentFacts(result(u"low.pdf"_s))->pageSizes[0].height(), 1000, 1);
}

TEST_F(Processing, ATargetThatCannotBeWrittenIsTheEntrysError) {
  settings->setDownloadLocation(QUrl::fromLocalFile(folder.filePath(u"page.html"_s)));
  const auto entry = prepared(twoBands);
  const MaybeError error = process(entry);
  ASSERT_TRUE(error);
  EXPECT_EQ(entry->state(), CVEntryStateDone);
  ASSERT_TRUE(entry->error());
  EXPECT_EQ(entry->error()->errorType(), 1);
  EXPECT_EQ(entry->error()->errorDescription(), error->localizedDescription);
}

TEST_F(Processing, PicturesBeyondTheFormatAreRefusedBeforeTheyAreMade) {
  settings->setFormat(u"JPEG"_s);
  const auto entry = prepared(u"<title>tall</title><div style='height:70000px'>"_s);
  const MaybeError error = process(entry);
  ASSERT_TRUE(error);
  EXPECT_TRUE(error->localizedDescription.contains("65"_L1))
      << qPrintable(error->localizedDescription);
  EXPECT_TRUE(results().isEmpty());
}

/// Answers with one file, or with none.
class AnsweringPanel : public CVSavePanel {
 public:
  explicit AnsweringPanel(std::optional<QUrl> answer) : answer_(std::move(answer)) {}
  void beginSheet(const std::shared_ptr<CVPreferences>& preferences, const QString& name,
                  const std::optional<QUrl>&,
                  std::function<void(std::optional<QUrl>)> completion) override {
    preferences->setFormat(u"PNG"_s);
    proposedName = name;
    completion(answer_);
  }
  QString proposedName;

 private:
  const std::optional<QUrl> answer_;
};

TEST_F(Processing, TheSavePanelDecidesPlaceAndFormat) {
  settings->setProcessAutomatically(false);
  const auto panel = std::make_shared<AnsweringPanel>(QUrl::fromLocalFile(result(u"chosen.pdf"_s)));
  services.savePanel = panel;
  ASSERT_FALSE(process(prepared(twoBands)));
  EXPECT_EQ(panel->proposedName, u"Bands"_s);
  EXPECT_EQ(results(), QStringList{u"chosen.pdf.png"_s});
  // What the user chose is replaced, not numbered.
  ASSERT_FALSE(process(prepared(twoBands)));
  EXPECT_EQ(results(), QStringList{u"chosen.pdf.png"_s});
}

TEST_F(Processing, APageThatIsLoadedAnewBehindItsPanelIsSavedOnce) {
  settings->setProcessAutomatically(false);
  settings->setFormat(u"PNG"_s);
  const auto panel = std::make_shared<PatientPanel>();
  services.savePanel = panel;
  for (const std::optional<QUrl>& chosen :
       {std::optional(QUrl::fromLocalFile(result(u"late.png"_s))), std::optional<QUrl>()}) {
    const auto entry = prepared(twoBands);
    std::atomic<int> ended = 0;
    entry->processWithCompletion([&](const auto&, const MaybeError& error) {
      EXPECT_FALSE(error) << error->localizedDescription.toStdString();
      ++ended;
    });
    ASSERT_TRUE(support::waitFor([&] { return panel->answer != nullptr; }));
    ASSERT_FALSE(prepare(entry));
    std::exchange(panel->answer, nullptr)(chosen);
    EXPECT_TRUE(support::waitFor([&] { return ended > 0; }));
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(results(), QStringList{u"late.png"_s});
  }
}

TEST_F(Processing, WhatIsAskedForWhileThePageLoadsBeginsAfterwards) {
  const auto entry = entryFor(page(twoBands));
  std::atomic<int> loaded = 0, converted = 0;
  entry->prepareWithCompletion([&](const auto&, const MaybeError& error) {
    EXPECT_FALSE(error);
    ++loaded;
  });
  entry->processWithCompletion([&](const auto&, const MaybeError& error) {
    EXPECT_FALSE(error);
    EXPECT_EQ(loaded, 1);
    ++converted;
  });
  EXPECT_TRUE(support::waitFor([&] { return converted > 0; }));
  EXPECT_EQ(converted, 1);
  EXPECT_EQ(results().size(), 1);
}

TEST_F(Processing, ACancelledPanelChangesNothingButTheFactor) {
  settings->setProcessAutomatically(false);
  services.savePanel = std::make_shared<AnsweringPanel>(std::nullopt);
  const auto entry = prepared(twoBands);
  ASSERT_FALSE(process(entry));
  EXPECT_EQ(entry->state(), CVEntryStateDownloaded);
  EXPECT_EQ(entry->completionFactor(), -1.0);
  EXPECT_TRUE(results().isEmpty());
}

TEST_F(Processing, PartsOfAMultipageDocumentArePaginated) {
  const auto entry = prepared(twoBands);
  MaybeError error;
  std::optional<QUrl> file;
  std::atomic<bool> ended = false;
  dispatch::globalAsync(dispatch::Priority::High, [&] {
    EXPECT_FALSE(entry->createTemporaryPDFWithConversionMode(u"Other"_s, error));
    file = entry->createTemporaryPDFWithConversionMode(u"Vector"_s, error);
    ended = true;
  });
  ASSERT_TRUE(waitFor([&] { return ended.load(); }));
  ASSERT_TRUE(file && !error);
  EXPECT_GT(pdf::documentFacts(file->toLocalFile())->pageCount(), 1);
}

}  // namespace
