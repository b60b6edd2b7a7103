#include "DelegateFixture.h"

using namespace Qt::StringLiterals;

namespace {

const QString safariWarning =
    u"For best results when capturing from Safari, please enable \"Allow Javascript from Apple Events\" in Safari's Develop Menu."_s;

class BrowserCapture : public delegate_test::DelegateFixture {
 protected:
  BrowserCapture() {
    launch();
    running->identifiers = {u"com.apple.Safari"_s, u"com.google.Chrome"_s};
    safari->texts = {u"From Safari"_s, u"S"_s, u""_s};
    chrome->texts = {u"<script></script>From Chrome"_s, u"S"_s, u""_s};
    safari->shownAddress = u"https://a.example/"_s;
    chrome->shownAddress = u"https://a.example/"_s;
  }

  /// What `processURLs` makes of the address: the document of its entry.
  std::optional<QString> documentFor(const QString& address) {
    delegate->processURLs({QUrl(address)});
    settle();
    return entry(table->getEntries().size() - 1)->document;
  }
};

TEST_F(BrowserCapture, AnAddressThatABrowserShowsIsCapturedFromThere) {
  EXPECT_EQ(documentFor(u"https://a.example/"_s), u"From Safari"_s);
  EXPECT_TRUE(delegate->warnings().isEmpty());
  running->identifiers = {u"com.google.Chrome"_s};
  EXPECT_EQ(documentFor(u"https://a.example/"_s), u"From Chrome"_s);
  EXPECT_EQ(documentFor(u"https://a.example"_s), std::nullopt) << "not the same text";
  EXPECT_EQ(delegate->warnings().size(), 1);
  running->identifiers.clear();
  EXPECT_EQ(documentFor(u"https://a.example/"_s), std::nullopt);
  chrome->connected = true;
  EXPECT_EQ(documentFor(u"https://a.example/"_s), u"From Chrome"_s);
  EXPECT_EQ(window.snaps, 0);
}

TEST_F(BrowserCapture, AnotherTabThatComesToTheFrontMeanwhileDoesNotGiveItsAddress) {
  chrome->texts.address = u"https://captured.example/"_s;
  chrome->shownAddress = u"https://later.example/"_s;
  delegate->onCaptureFromChrome();
  ASSERT_TRUE(waitForEntries(1));
  EXPECT_EQ(entry(0)->initialURL(), QUrl(u"https://captured.example/"_s));
  // A page of the browser itself is told by the same address.
  chrome->texts.address = u"chrome://settings/"_s;
  delegate->onCaptureFromChrome();
  settle();
  EXPECT_EQ(table->getEntries().size(), 1U);
}

TEST_F(BrowserCapture, WithoutScriptAccessTheLoadedSourceIsTakenWithItsScripts) {
  safari->texts = {};
  safari->loadedSource = u"source"_s;
  delegate->onCaptureFromSafari();
  ASSERT_TRUE(waitForEntries(1));
  settle();
  EXPECT_EQ(entry(0)->document, u"source"_s);
  EXPECT_TRUE(entry(0)->forceJavascript);
  EXPECT_EQ(delegate->warnings(), QStringList{safariWarning});
  EXPECT_EQ(window.snaps, 1);
  EXPECT_TRUE(window.calls.contains(u"closeAddPopover"_s));
}

TEST_F(BrowserCapture, PagesOfTheBrowserItselfAddNothing) {
  safari->shownAddress = u"favorites://"_s;
  chrome->shownAddress = u"chrome://settings/"_s;
  delegate->onCaptureFromSafari();
  delegate->onCaptureFromChrome();
  settle();
  safari->shownAddress = std::nullopt;
  chrome->shownAddress = u"https://a.example/"_s;
  chrome->texts.document = std::nullopt;
  chrome->reason = u"Allow remote debugging in Chrome."_s;
  delegate->onCaptureFromSafari();
  delegate->onCaptureFromChrome();
  settle();
  EXPECT_TRUE(table->getEntries().empty());
  EXPECT_EQ(window.snaps, 0);
  EXPECT_EQ(delegate->warnings(), QStringList{*chrome->reason});
}

}  // namespace
