#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "DelegateFixture.h"

using namespace Qt::StringLiterals;

namespace {

class Delegate : public delegate_test::DelegateFixture {};

const QString directWarning =
    u"You should not open direct URLs with Corvalis. Instead, use the extension, bookmarklet, Capture from Safari or Capture from Chrome."_s;
const QString bookmarkletWarning =
    u"It seems you are using an old bookmarklet version. Please make sure to update your bookmarklet."_s;
const QString dropWarning =
    u"Drop zone should not be used for enqueing URLs. Capture directly from Safari or Chrome, or use Bookmarklet, for best results."_s;

QString fullRequest(const QString& address) {
  return requests::fullRequest(address, u"<script></script>Secret text"_s, u"p{}"_s, u"iframe::"_s);
}

TEST_F(Delegate, StartsUpInOrderAndClearsTheWorkingFolder) {
  EXPECT_TRUE(redirect->isSetUp);
  const CVUtils before({});
  QFile leftover(before.createTemporaryFile().toLocalFile());
  ASSERT_TRUE(leftover.open(QIODevice::WriteOnly));
  EXPECT_FALSE(delegate->launched() || delegate->isForeground());
  launch();
  EXPECT_EQ(window.calls, (QStringList{u"initializeMainWindow"_s, u"initializeTouchBar"_s,
                                       u"startAnimatingArrow"_s}));
  EXPECT_TRUE(delegate->launched() && delegate->isForeground());
  EXPECT_FALSE(leftover.exists());
  EXPECT_EQ(CVObjectRepository::singleton().getUtils()->getAppDelegate(), delegate);
  CVObjectRepository::singleton().getPreferences()->setTheme(u"dark"_s);
  EXPECT_TRUE(support::waitFor([&] { return window.calls.contains(u"dark"_s); }));
  delegate->onBackground();
  EXPECT_FALSE(delegate->isForeground());
  delegate->windowWillClose();
  EXPECT_TRUE(terminated);
}

TEST_F(Delegate, RequestsBeforeLaunchingWaitAndAreNotLost) {
  for (int i = 0; i < 40; ++i)
    delegate->handleAppleEvent(fullRequest(u"corvxurls://a.example/%1"_s.arg(i)));
  settle();
  EXPECT_TRUE(table->getEntries().empty());
  EXPECT_EQ(log.all().count(u"Waiting for launched..."_s), 40);
  launch();
  EXPECT_TRUE(waitForEntries(40));
}

TEST_F(Delegate, AFullRequestBecomesAnEntryWithTheMergedPage) {
  launch();
  delegate->open({fullRequest(u"corvxurls://a.example/x"_s)}, {});
  ASSERT_TRUE(waitForEntries(1));
  settle();
  EXPECT_EQ(addresses(), QStringList{u"https://a.example/x"_s});
  EXPECT_EQ(entry(0)->document, u"Secret text"_s);
  EXPECT_FALSE(entry(0)->forceJavascript);
  EXPECT_TRUE(entry(0)->forceSize.isNull());
  EXPECT_TRUE(delegate->warnings().isEmpty());
  EXPECT_FALSE(window.warns);
  EXPECT_EQ(window.snaps, 1);
  EXPECT_EQ(log.all(), (QStringList{u"Handling URL event"_s, u"After dropbox"_s}));
}

TEST_F(Delegate, WhatIsMissingFromARequestIsWarnedAbout) {
  launch();
  struct {
    const char* name;
    QString text;
    int entries;
    std::optional<QString> document;
    QStringList warnings;
  } const cases[] = {
      {"page only",
       requests::request(u"corvxurl://a.example/"_s, requests::encoded(u"P"_s)),
       1,
       u"P"_s,
       {bookmarkletWarning}},
      {"broken transport",
       u"corvxurl://a.example/corvxdata::%"_s,
       1,
       std::nullopt,
       {bookmarkletWarning}},
      {"no address", fullRequest(u"corvxurl://a b"_s), 0, std::nullopt, {}},
      {"local file", fullRequest(u"file:///etc/passwd"_s), 0, std::nullopt, {}},
      {"direct, no address", u"corvxurl://a b"_s, 0, std::nullopt, {directWarning}},
      {"direct, local file", u"file:///etc/passwd"_s, 0, std::nullopt, {directWarning}},
      {"start page", u"favorites://corvxdata::"_s, 0, std::nullopt, {}},
  };
  for (const auto& request : cases) {
    SCOPED_TRACE(request.name);
    const int snaps = window.snaps;
    const auto known = delegate->warnings();
    const auto entries = table->getEntries().size();
    delegate->handleAppleEvent(request.text);
    settle();
    ASSERT_EQ(table->getEntries().size(), entries + static_cast<std::size_t>(request.entries));
    if (request.entries) {
      EXPECT_EQ(entry(entries)->document, request.document);
    }
    for (const QString& warning : request.warnings)
      EXPECT_TRUE(delegate->warnings().contains(warning));
    if (request.warnings.isEmpty()) {
      EXPECT_EQ(delegate->warnings(), known);
    }
    EXPECT_EQ(window.snaps - snaps, request.text.startsWith(u"favorites"_s) ? 0 : 1);
  }
  EXPECT_EQ(delegate->warnings(), (QStringList{bookmarkletWarning, directWarning}));
}

TEST_F(Delegate, ADirectAddressIsFetchedWithBothWarnings) {
  launch();
  delegate->handleAppleEvent(u"corvxurl://a.example/x"_s);
  ASSERT_TRUE(waitForEntries(1));
  settle();
  EXPECT_EQ(addresses(), QStringList{u"http://a.example/x"_s});
  EXPECT_EQ(entry(0)->document, std::nullopt);
  EXPECT_EQ(delegate->warnings(), (QStringList{directWarning, dropWarning}));
  EXPECT_TRUE(window.warns);
  EXPECT_TRUE(log.all().contains(u"Handling URL opening: http://a.example/x"_s));
  EXPECT_EQ(window.states, (QStringList{u"Processing URLs..."_s,
                                        u"Processing URL: http://a.example/x..."_s, u""_s}));
  EXPECT_TRUE(window.isIdle());
}

TEST_F(Delegate, AnAccountRedirectIsNoCapture) {
  launch();
  delegate->handleAppleEvent(u"db-key://success"_s);
  delegate->handleAppleEvent(u"db-key://cancel"_s);
  settle();
  EXPECT_TRUE(table->getEntries().empty());
  EXPECT_EQ(window.snaps, 0);
  EXPECT_EQ(window.calls.count(u"bringToFront"_s), 2);
  EXPECT_EQ(
      alerts->shown,
      QStringList{
          u"DropBox Successfully Linked: You have successfully linked Corvalis to your Dropbox!"_s});
  EXPECT_EQ(log.all().count(u"Dropbox"_s), 2);
}

TEST_F(Delegate, OverlappingRunsKeepTheBusyStatusUntilTheLastEnds) {
  launch();
  std::binary_semaphore mayGoOn(0);
  beforeEntry = [&](const QUrl& url) {
    if (url.host() == u"slow.example"_s) mayGoOn.acquire();
  };
  delegate->processURLs({QUrl(u"http://slow.example/"_s)});
  ASSERT_TRUE(support::waitFor([&] { return window.states.size() == 2; }));
  delegate->processURLs({QUrl(u"http://quick.example/"_s)});
  ASSERT_TRUE(waitForEntries(1));
  dispatch::mainSync([] {});
  EXPECT_FALSE(window.isIdle());
  mayGoOn.release();
  ASSERT_TRUE(waitForEntries(2));
  EXPECT_TRUE(support::waitFor([&] { return window.isIdle(); }));
  EXPECT_EQ(window.states.count(u""_s), 1);
}

TEST_F(Delegate, WarningsAreKeptOnceInTheOrderOfTheirFirstAddition) {
  delegate->addWarning(u"b"_s);
  delegate->addWarning(u"a"_s);
  delegate->addWarning(u"b"_s);
  EXPECT_EQ(delegate->warnings(), (QStringList{u"b"_s, u"a"_s}));
}

TEST_F(Delegate, DroppedFilesAreCapturedUnlessAllArePDFs) {
  launch();
  QTemporaryDir folder;
  const auto path = [&](const QString& name) { return folder.filePath(name); };
  QDir(folder.path()).mkdir(u"folder.pdf"_s);
  delegate->dragViewFilesWereDropped({path(u"a.pdf"_s), path(u"b.PDF"_s)});
  ASSERT_TRUE(waitForEntries(2));
  delegate->dragViewFilesWereDropped({path(u"folder.pdf"_s), path(u"c.pdf"_s)});
  ASSERT_TRUE(waitForEntries(3));
  settle();
  EXPECT_EQ(entry(2)->initialURL(), QUrl::fromLocalFile(path(u"c.pdf"_s)));
  EXPECT_EQ(window.snaps, 2);

  window.chosen = QUrl::fromLocalFile(path(u"out.pdf"_s));
  delegate->dragViewFilesWereDropped({path(u"d.pdf"_s), path(u"folder.pdf"_s), path(u"c.pdf"_s)});
  QFile merged(path(u"out.pdf.pdf"_s));
  settle();
  ASSERT_TRUE(merged.open(QIODevice::ReadOnly));
  EXPECT_EQ(merged.readAll(), "d.pdf\nc.pdf\n");
  EXPECT_EQ(window.snaps, 2);
  EXPECT_TRUE(window.calls.contains(u"savePanel Multipage"_s));
  EXPECT_TRUE(window.states.contains(u"Mergin PDFs..."_s));
  EXPECT_TRUE(window.isIdle());
  EXPECT_EQ(table->getEntries().size(), 3U);
}

TEST_F(Delegate, PastedTextAndFilesAreCapturedInOrder) {
  launch();
  EXPECT_FALSE(delegate->processPasteboard());
  pasteboard->texts = {u"see https://c.example.com/1, b.example.com\nand www.a.example.com."_s};
  delegate->activateAction(u"paste"_s, {}, {});
  ASSERT_TRUE(waitForEntries(3));
  EXPECT_EQ(addresses(), (QStringList{u"https://c.example.com/1"_s, u"http://b.example.com"_s,
                                      u"http://www.a.example.com"_s}));
  pasteboard->texts = {u"nothing, file:///etc/passwd"_s};
  pasteboard->files = {QUrl::fromLocalFile(u"/tmp/page.html"_s)};
  EXPECT_TRUE(delegate->processPasteboard());
  ASSERT_TRUE(waitForEntries(4));
  settle();
  EXPECT_EQ(addresses().last(), u"file:///tmp/page.html"_s);
  EXPECT_EQ(table->getEntries().size(), 4U);
}

TEST_F(Delegate, SnappedPagesCarryTheirSize) {
  launch();
  delegate->addEntryWithSource(u"P"_s, QUrl(u"http://a.example/"_s), true, QSizeF(800, 600));
  ASSERT_TRUE(waitForEntries(1));
  EXPECT_EQ(entry(0)->forceSize, QSizeF(800, 600));
  EXPECT_TRUE(entry(0)->forceJavascript);
}

TEST_F(Delegate, TheEffectFollowsItsSetting) {
  launch();
  CVObjectRepository::singleton().getPreferences()->setSnapEffect(false);
  delegate->dragViewStringWasDragged(u"no address"_s);
  settle();
  EXPECT_EQ(window.snaps, 0);
}

class ProcessAll : public Delegate {
 protected:
  ProcessAll() { launch(); }
  std::shared_ptr<delegate_test::TestEntry> add(CVEntryState state, bool failed = false) {
    const auto added = std::make_shared<delegate_test::TestEntry>(QUrl(u"http://a.example/"_s),
                                                                  std::nullopt, false, QSizeF());
    added->setState(state);
    if (failed) added->setError(std::make_shared<CVError>());
    table->addEntry(added);
    return added;
  }
  std::shared_ptr<CVDefaultPreferences> preferences() const {
    return CVObjectRepository::singleton().getPreferences();
  }
};

TEST_F(ProcessAll, EndsTheBusyStateWhenEveryEntryWasProcessed) {
  const auto waiting = add(CVEntryStateWaiting);
  const auto loaded = add(CVEntryStateDownloaded);
  const auto done = add(CVEntryStateDone);
  delegate->processAll();
  EXPECT_TRUE(preferences()->processAutomatically());
  ASSERT_TRUE(support::waitFor([&] { return window.states.contains(u""_s); }));
  EXPECT_EQ(waiting->processed + loaded->processed + done->processed, 3);
  EXPECT_FALSE(preferences()->processAutomatically());
  EXPECT_FALSE(preferences()->loading());
  EXPECT_TRUE(window.isIdle());
  EXPECT_EQ(window.states.first(), u"Processing all items..."_s);
}

TEST_F(ProcessAll, ASkippedEntryKeepsTheBusyState) {
  const auto loading = add(CVEntryStateDownloading);
  const auto working = add(CVEntryStateProcessing);
  const auto failed = add(CVEntryStateDownloaded, true);
  const auto loaded = add(CVEntryStateDownloaded);
  delegate->processAll();
  ASSERT_TRUE(support::waitFor([&] { return loaded->processed == 1; }));
  settle();
  EXPECT_EQ(loading->processed + working->processed + failed->processed, 0);
  EXPECT_FALSE(window.isIdle());
  EXPECT_TRUE(preferences()->processAutomatically());
}

TEST_F(ProcessAll, ClearingClosesThePopoverAndAsksTheTable) {
  delegate->clearAll();
  delegate->clearCompleted();
  delegate->entryTableControllerNumberOfEntriesChanged(*table);
  settle();
  EXPECT_EQ(table->cleared, (QStringList{u"all"_s, u"completed"_s}));
  EXPECT_EQ(window.calls.count(u"closeBatchPopover"_s), 2);
  EXPECT_EQ(window.calls.mid(window.calls.size() - 2),
            (QStringList{u"resizeWindow"_s, u"updateBottomControlsState"_s}));
}

}  // namespace
