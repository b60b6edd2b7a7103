#include <QDir>

#include "BrowserFixture.h"
#include "SeenPage.h"
#include "platform/browsers/AddOn.h"
#include "platform/browsers/AddOnDoor.h"
#include "platform/browsers/AddOnFrontPage.h"

using namespace addon_test;

namespace {

class AddOnTest : public ::testing::Test {
 protected:
  void SetUp() override { serveSeenPage(server); }

  /// Starts the browser with the add-on; the host is known to it, or not.
  void start(bool hasHost) {
    QDir().mkpath(Chromium::profileFolder());
    if (hasHost) {
      QProcess integrate;
      integrate.start(QStringLiteral(NATIVE_HOST_PROGRAM), {u"integrate"_s});
      ASSERT_TRUE(integrate.waitForFinished());
      ASSERT_EQ(integrate.exitCode(), 0);
    }
    browser = std::make_unique<Chromium>(
        server.url(u"/page"_s),
        QStringList{u"--load-extension="_s + QStringLiteral(CORVALIS_SOURCE_DIR "/browser-addon")});
    ASSERT_TRUE(browser->isReady());
    ASSERT_TRUE(inspector.open());
    ASSERT_TRUE(support::waitFor([&] {
      page = inspector.target(u"page"_s, server.url(u"/page"_s).toString());
      worker = inspector.target(u"service_worker"_s, addOnAddress());
      return !page.isEmpty() && !worker.isEmpty();
    }));
    ASSERT_TRUE(inspector.waitForPage(page, u"/page"_s));
    // The worker is there before its program has run.
    ASSERT_TRUE(support::waitFor([&] {
      return inspector.evaluate(worker, u"chrome.action.onClicked.hasListeners()"_s).toBool();
    }));
  }

  static QString addOnAddress() {
    return u"chrome-extension://"_s + QString::fromUtf16(browsers::chromiumAddOn);
  }

  /// The toolbar button, for the tab that is shown.
  void press() {
    inspector.evaluate(worker,
                       u"chrome.tabs.query({active: true}).then("
                       "([tab]) => { chrome.action.onClicked.dispatch(tab); })"_s);
  }
  QString badge() {
    return inspector
        .evaluate(worker,
                  u"chrome.tabs.query({}).then(async tabs => (await Promise.all(tabs.map("
                  "tab => chrome.action.getBadgeText({tabId: tab.id})))).join(''))"_s)
        .toString();
  }

  HttpServer server;
  std::unique_ptr<Chromium> browser;
  Inspector inspector;
  QString page, worker;
};

TEST_F(AddOnTest, TheButtonHandsThePageAsSeenToTheProgram) {
  ReceivingProgram program;
  ASSERT_NO_FATAL_FAILURE(start(true));
  press();
  ASSERT_TRUE(support::waitFor([&] { return !program.opened.isEmpty(); }));
  EXPECT_TRUE(support::waitFor([&] { return badge() == u"✓"; }));
  EXPECT_TRUE(program.opened.first().startsWith(
      server.url(u"/page"_s).toString().replace(u"http:"_s, u"corvxurl:"_s) + u"corvxdata::"_s));
  expectPageAsSeen(mergedPage(program.opened.first()), server);

  // The page itself is as it was.
  EXPECT_EQ(inspector.evaluate(page, u"document.querySelectorAll('canvas, iframe').length"_s), 4);

  // A page that is larger than one message.
  inspector.evaluate(page, u"area.value = 'ü'.repeat(9 << 20); 0"_s);
  press();
  ASSERT_TRUE(support::waitFor([&] { return program.opened.size() == 2; }, 2min));
  const auto large = CapturePayload::decode(program.opened.last());
  ASSERT_TRUE(large.page);
  EXPECT_EQ(large.page->count(u'ü'), 9 << 20);
}

TEST_F(AddOnTest, TheRunningProgramAsksForTheTabThatTheUserSees) {
  const auto door = browsers::AddOnDoor::create();
  ASSERT_EQ(door->listen(), std::nullopt);
  ASSERT_NO_FATAL_FAILURE(start(true));
  browsers::AddOnFrontPage front(door);
  ASSERT_TRUE(support::waitFor([&] { return front.isRunning(); }));
  EXPECT_EQ(elsewhere([&] { return front.address(); }), server.url(u"/page"_s).toString());
  const auto texts = elsewhere([&] { return front.capture(); });
  ASSERT_TRUE(texts.document && texts.styles && texts.frames);
  EXPECT_EQ(texts.address, server.url(u"/page"_s).toString());
  expectPageAsSeen(PageMerging::withFrames(PageMerging::withStyles(*texts.document, *texts.styles),
                                           *texts.frames)
                       .toStdString(),
                   server);

  inspector.call(u"Target.createTarget"_s, {{u"url"_s, u"about:blank"_s}});
  const auto none = elsewhere([&] { return front.capture(); });
  EXPECT_EQ(none.document, std::nullopt);
  EXPECT_EQ(front.unavailableReason(), u"Corvalis captures web pages only."_s);
}

TEST_F(AddOnTest, WithoutTheHostASmallPageGoesByItsAddressAndTheUserIsToldHowToInstallIt) {
  ASSERT_NO_FATAL_FAILURE(start(false));
  press();
  QString hint;
  ASSERT_TRUE(support::waitFor([&] {
    hint = inspector.target(u"page"_s, addOnAddress() + u"/pages/install.html#sent"_s);
    return !hint.isEmpty();
  }));
  // The page that tells it opens the request, and the user's own page stays.
  QString request;
  ASSERT_TRUE(support::waitFor([&] {
    request = inspector.evaluate(hint, u"document.querySelector('iframe')?.src"_s).toString();
    return !request.isEmpty();
  }));
  EXPECT_LT(request.size(), 131'072);
  EXPECT_THAT(mergedPage(request), testing::HasSubstr("/own.png?member\""));
  EXPECT_TRUE(support::waitFor([&] { return badge() == u"?"; }));
  EXPECT_EQ(inspector.target(u"page"_s, server.url(u"/page"_s).toString()), page);
}

TEST_F(AddOnTest, WithoutTheHostALargePageIsNotCaptured) {
  ASSERT_NO_FATAL_FAILURE(start(false));
  inspector.evaluate(page, u"area.value = 'x'.repeat(200000); 0"_s);
  press();
  ASSERT_TRUE(support::waitFor([&] {
    return !inspector.target(u"page"_s, addOnAddress() + u"/pages/install.html#too-large"_s)
                .isEmpty();
  }));
  EXPECT_TRUE(support::waitFor([&] { return badge().contains(u'!'); }));
}

}  // namespace
