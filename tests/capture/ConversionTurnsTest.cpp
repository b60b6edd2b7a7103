#include <QImage>
#include <QProcess>
#include <future>

#include "EntryFixture.h"
#include "delivery/PDFMultipageAssembler.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/pdf/DocumentFacts.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using support::waitFor;

namespace {

constexpr std::chrono::seconds longest{60};

/// How a step ended, once.
struct Ending {
  std::atomic<int> count = 0;
  MaybeError error;

  CVEntry::Completion completion() {
    return [this](const std::shared_ptr<CVEntry>&, const MaybeError& given) {
      error = given;
      ++count;
    };
  }
  bool wait() const {
    return waitFor([this] { return count > 0; }, longest);
  }
};

class ConversionTurns : public EntryFixture {
 protected:
  /// The same file with other contents at each call.
  QUrl pageCalled(const QString& name) const {
    return page(
        u"<!DOCTYPE html><title>%1</title><body style='margin:0'>"
        "<div style='height:9000px'>upper words of %1</div><p>last words of %1"_s.arg(name));
  }
  std::shared_ptr<CVURLEntry> prepared(const QString& name) {
    auto entry = entryFor(pageCalled(name));
    EXPECT_FALSE(prepare(entry));
    return entry;
  }

  static std::future<std::pair<std::optional<QUrl>, MaybeError>> multipagePart(
      const std::shared_ptr<CVURLEntry>& entry, const QString& mode) {
    return std::async(std::launch::async, [entry, mode] {
      MaybeError error;
      const auto file = entry->createTemporaryPDFWithConversionMode(mode, error);
      return std::pair(file, error);
    });
  }
  template <class Value>
  static Value result(std::future<Value>& future) {
    EXPECT_TRUE(waitFor(
        [&] { return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; },
        longest));
    return future.get();
  }

  static QString textOf(const QString& pdf) {
    QProcess tool;
    tool.start(u"pdftotext"_s, {pdf, u"-"_s});
    EXPECT_TRUE(tool.waitForFinished());
    return QString::fromUtf8(tool.readAllStandardOutput());
  }
  static bool isLandscape(const QString& pdf) {
    const auto facts = pdf::documentFacts(pdf);
    EXPECT_TRUE(facts) << pdf.toStdString();
    return facts && facts->pageSizes[0].width() > facts->pageSizes[0].height();
  }
};

TEST_F(ConversionTurns, APageThatIsLoadedAnewLeavesTheRunningConversionItsOwn) {
  for (const QString& mode : {u"Vector"_s, u"Image"_s}) {
    SCOPED_TRACE(mode.toStdString());
    settings->setConversionMode(mode);
    const auto entry = prepared(u"First"_s);
    Ending processed, loaded;
    entry->processWithCompletion(processed.completion());
    ASSERT_TRUE(waitFor([&] { return entry->state() == CVEntryStateProcessing; }, longest));
    (void)pageCalled(u"Second"_s);
    entry->prepareWithCompletion(loaded.completion());
    ASSERT_TRUE(processed.wait());
    ASSERT_TRUE(loaded.wait());
    EXPECT_FALSE(processed.error) << processed.error->localizedDescription.toStdString();
    EXPECT_FALSE(loaded.error);
    EXPECT_TRUE(textOf(output.filePath(u"First.pdf"_s)).contains("last words of First"_L1));
    EXPECT_EQ(entry->title(), u"Second"_s);
    EXPECT_EQ(entry->state(), CVEntryStateDownloaded);
    ASSERT_FALSE(process(entry));
    EXPECT_TRUE(textOf(output.filePath(u"Second.pdf"_s)).contains("last words of Second"_L1));
    EXPECT_EQ(results(), (QStringList{u"First.pdf"_s, u"Second.pdf"_s}));
    for (const QString& name : results())
      QFile::remove(output.filePath(name));
  }
}

TEST_F(ConversionTurns, AFailureIsNotChargedToThePageThatWasLoadedMeanwhile) {
  settings->setDownloadLocation(QUrl::fromLocalFile(folder.filePath(u"page.html"_s)));
  const auto entry = prepared(u"First"_s);
  Ending processed, loaded;
  entry->processWithCompletion(processed.completion());
  ASSERT_TRUE(waitFor([&] { return entry->state() == CVEntryStateProcessing; }, longest));
  entry->prepareWithCompletion(loaded.completion());
  ASSERT_TRUE(processed.wait() && loaded.wait());
  EXPECT_TRUE(processed.error);
  EXPECT_FALSE(entry->error());
  EXPECT_EQ(entry->state(), CVEntryStateDownloaded);
}

TEST_F(ConversionTurns, APictureCarriesTheAddressThatItsConversionBeganWith) {
  settings->setFormat(u"PNG"_s);
  const auto entry = prepared(u"First"_s);
  const QString address = entry->currentURL()->toString(QUrl::FullyEncoded);
  Ending processed;
  entry->processWithCompletion(processed.completion());
  ASSERT_TRUE(waitFor([&] { return entry->state() == CVEntryStateProcessing; }, longest));
  entry->setCurrentURL(QUrl(u"http://127.0.0.1:9/loaded-meanwhile"_s));
  ASSERT_TRUE(processed.wait());
  QFile picture(output.filePath(u"First.png"_s));
  ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
  const QByteArray bytes = picture.readAll();
  EXPECT_TRUE(bytes.contains(address.toUtf8()));
  EXPECT_FALSE(bytes.contains("loaded-meanwhile"));
}

TEST_F(ConversionTurns, AConversionThatWasBegunAheadIsNotTakenForThePageThatReplacesIt) {
  services.thumbnails = Thumbnails::NotShown;
  services.conversions = Conversions::Ahead;
  settings->setFormat(u"PNG"_s);
  const auto entry = prepared(u"First"_s);
  (void)page(u"<!DOCTYPE html><title>Second</title><body style='margin:0;background:#00f'>"_s);
  ASSERT_FALSE(prepare(entry));
  ASSERT_FALSE(process(entry));
  EXPECT_EQ(results(), QStringList{u"Second.png"_s});
  EXPECT_EQ(QImage(output.filePath(u"Second.png"_s)).size(), QSize(1024, 1000));
}

TEST_F(ConversionTurns, ConversionsOfOneEntryKeepTheirOwnSettings) {
  settings->setUsePagination(true);
  settings->setConversionMode(u"Image"_s);
  const auto entry = prepared(u"Both"_s);
  for (int round = 0; round < 3; ++round) {
    settings->setOrientation(1);
    Ending processed;
    entry->processWithCompletion(processed.completion());
    ASSERT_TRUE(waitFor([&] { return entry->state() == CVEntryStateProcessing; }, longest));
    settings->setOrientation(0);
    auto vector = multipagePart(entry, u"Vector"_s);
    auto picture = multipagePart(entry, u"Image"_s);
    ASSERT_TRUE(processed.wait());
    EXPECT_FALSE(processed.error);
    const QString delivered = output.filePath(results().value(0));
    EXPECT_TRUE(isLandscape(delivered));
    for (auto* part : {&vector, &picture}) {
      const auto [file, error] = result(*part);
      ASSERT_TRUE(file && !error);
      EXPECT_FALSE(isLandscape(file->toLocalFile()));
    }
    EXPECT_TRUE(QFile::remove(delivered));
    entry->setState(CVEntryStateDownloaded);
  }
}

TEST_F(ConversionTurns, WhatTheUserSavesWhileThePageLoadsAnewIsTheNewPage) {
  settings->setProcessAutomatically(false);
  settings->setConversionMode(u"Vector"_s);
  const auto panel = std::make_shared<PatientPanel>();
  services.savePanel = panel;
  const auto entry = prepared(u"First"_s);
  Ending processed, loaded;
  entry->processWithCompletion(processed.completion());
  ASSERT_TRUE(waitFor([&] { return panel->answer != nullptr; }));
  (void)pageCalled(u"Second"_s);
  entry->prepareWithCompletion(loaded.completion());
  std::exchange(panel->answer, nullptr)(QUrl::fromLocalFile(output.filePath(u"chosen.pdf"_s)));
  ASSERT_TRUE(loaded.wait() && processed.wait());
  EXPECT_FALSE(processed.error);
  EXPECT_TRUE(textOf(output.filePath(u"chosen.pdf"_s)).contains("words of Second"_L1));
}

TEST_F(ConversionTurns, JoiningPassesOverAPartThatFailed) {
  const auto failing = prepared(u"Failing"_s);
  failing->prepareWithCompletion({});  // Loads anew: there is no page to convert.
  QList<QUrl> parts;
  for (const QString& mode : {u"Vector"_s, u"Image"_s}) {
    auto part = multipagePart(failing, mode);
    const auto [file, error] = result(part);
    EXPECT_TRUE(error) << mode.toStdString();
    ASSERT_TRUE(file) << mode.toStdString();
    parts.append(*file);
  }
  const QUrl target = QUrl::fromLocalFile(output.filePath(u"joined.pdf"_s));
  EXPECT_TRUE(PDFMultipageAssembler().mergePDFURLs(parts, target));
  EXPECT_FALSE(QFile::exists(target.toLocalFile()));
  auto good = multipagePart(prepared(u"Good"_s), u"Vector"_s);
  const auto [file, error] = result(good);
  ASSERT_TRUE(file && !error);
  parts.insert(1, *file);
  ASSERT_FALSE(PDFMultipageAssembler().mergePDFURLs(parts, target));
  EXPECT_EQ(pdf::documentFacts(target.toLocalFile())->pageCount(),
            pdf::documentFacts(file->toLocalFile())->pageCount());
  EXPECT_TRUE(textOf(target.toLocalFile()).contains("last words of Good"_L1));
}

TEST_F(ConversionTurns, APageThatIsNotLoadedIsSaidSo) {
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const auto entry = entryFor(QUrl(u"http://127.0.0.1:%1/"_s.arg(silent.serverPort())));
  entry->prepareWithCompletion({});
  auto part = multipagePart(entry, u"Vector"_s);
  EXPECT_TRUE(result(part).second);
  EXPECT_EQ(entry->state(), CVEntryStateDownloading);
}

}  // namespace
