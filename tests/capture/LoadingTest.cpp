#include "EntryFixture.h"
#include "platform/base/SystemVersion.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using support::waitFor;

namespace {

using Loading = EntryFixture;

TEST_F(Loading, APageBringsItsTitleAddressAndThumbnail) {
  const QUrl url = page(u"<title>First/\"page\"</title><body style='background:#0a0'>text"_s);
  const auto entry = entryFor(url);
  ASSERT_FALSE(prepare(entry));
  EXPECT_EQ(entry->state(), CVEntryStateDownloaded);
  EXPECT_FALSE(entry->error());
  EXPECT_EQ(entry->completionFactor(), 1.0);
  EXPECT_EQ(entry->title(), u"First page"_s);
  EXPECT_EQ(entry->currentURL(), url);
  ASSERT_TRUE(waitFor([&] { return entry->representativeImage() != nullptr; }));
  const QImage thumbnail = entry->representativeImage()->pixels();
  EXPECT_EQ(thumbnail.pixelColor(thumbnail.width() / 2, thumbnail.height() / 2), QColor(0, 170, 0));
}

TEST_F(Loading, OlderSystemsPictureTheOtherView) {
  const SystemVersionOverride older(SystemVersion{10, 12, 6});
  const auto entry = entryFor(page(u"<title>old</title><body style='background:#00a'>"_s));
  ASSERT_FALSE(prepare(entry));
  EXPECT_TRUE(waitFor([&] { return entry->representativeImage() != nullptr; }));
}

TEST_F(Loading, ACapturedDocumentStandsAtItsAddressWithItsScriptsOff) {
  const QUrl address(u"http://localhost:9999/folder/page"_s);
  const auto entry =
      entryFor(address,
               u"<title>captured</title><noscript>gone</noscript><a href='other'>link</a>"
               "<script>document.title = 'changed by a script'</script>"_s);
  EXPECT_FALSE(entry->useJavascript());
  ASSERT_FALSE(prepare(entry));
  EXPECT_EQ(entry->title(), u"captured"_s);
  EXPECT_EQ(entry->currentURL(), address);
  // A second preparation starts anew and ends as the first.
  ASSERT_FALSE(prepare(entry));
  EXPECT_EQ(entry->title(), u"captured"_s);
}

TEST_F(Loading, TheDomainStandsBeforeTheTitleIfItIsWanted) {
  settings->setPrependTitleWithWebsiteDomain(true);
  const auto entry = entryFor(QUrl(u"http://localhost:9999/"_s), u"<title>name</title>"_s);
  ASSERT_FALSE(prepare(entry));
  EXPECT_EQ(entry->title(), u"localhost - name"_s);
  const auto local = entryFor(page(u"<title>name</title>"_s));
  ASSERT_FALSE(prepare(local));
  EXPECT_FALSE(local->title());
}

TEST_F(Loading, AFailureIsARecordBesideTheStateAndHappensOnce) {
  const auto entry = entryFor(QUrl(u"http://127.0.0.1:1/"_s));
  const MaybeError error = prepare(entry);
  ASSERT_TRUE(error);
  EXPECT_FALSE(error->localizedDescription.isEmpty());
  EXPECT_EQ(entry->state(), CVEntryStateDownloaded);
  ASSERT_TRUE(entry->error());
  EXPECT_EQ(entry->error()->errorType(), 0);
  // Later signals of the same load change nothing.
  entry->setState(CVEntryStateProcessing);
  entry->finishedLoadingWithError(std::nullopt);
  entry->finishedLoadingWithError(Error{});
  EXPECT_EQ(entry->state(), CVEntryStateProcessing);
}

TEST_F(Loading, TwoSignalsEndALoadAndTheFirstOnlyCounts) {
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const auto entry = entryFor(QUrl(u"http://127.0.0.1:%1/"_s.arg(silent.serverPort())));
  int ended = 0;
  entry->prepareWithCompletion(
      [&](const std::shared_ptr<CVEntry>&, const MaybeError& error) { ended += error ? 100 : 1; });
  entry->finishedLoadingWithError(std::nullopt);
  EXPECT_EQ(entry->state(), CVEntryStateDownloading);
  entry->finishedLoadingWithError(std::nullopt);
  EXPECT_EQ(entry->state(), CVEntryStateDownloaded);
  EXPECT_EQ(ended, 1);
}

TEST_F(Loading, AServerThatNeverAnswersFailsThePage) {
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const auto entry = entryFor(QUrl(u"http://127.0.0.1:%1/"_s.arg(silent.serverPort())));
  const MaybeError error = prepare(entry);
  ASSERT_TRUE(error);
  EXPECT_TRUE(error->localizedDescription.contains("answer"_L1))
      << qPrintable(error->localizedDescription);
}

}  // namespace
