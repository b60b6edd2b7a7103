#include <QDir>

#include "BrowserFixture.h"
#include "Firefox.h"
#include "SeenPage.h"
#include "platform/browsers/AddOnDoor.h"
#include "platform/browsers/AddOnFrontPage.h"

using namespace addon_test;

namespace {

TEST(AddOnInFirefox, HandsThePageAsSeenToTheProgramAndAnswersIt) {
  HttpServer server;
  serveSeenPage(server);
  const QString address = server.url(u"/page"_s).toString();
  QDir().mkpath(Firefox::userFolder());
  QProcess integrate;
  integrate.start(QStringLiteral(NATIVE_HOST_PROGRAM), {u"integrate"_s});
  ASSERT_TRUE(integrate.waitForFinished());
  ASSERT_EQ(integrate.exitCode(), 0);

  ReceivingProgram program;
  const auto door = browsers::AddOnDoor::create();
  ASSERT_EQ(door->listen(), std::nullopt);
  Firefox browser;
  ASSERT_TRUE(browser.isReady());
  ASSERT_TRUE(browser.show(address));
  browser.press();
  ASSERT_TRUE(support::waitFor([&] { return !program.opened.isEmpty(); }, 30s));
  EXPECT_TRUE(support::waitFor([&] { return browser.badge() == u"✓"; }));
  EXPECT_TRUE(program.opened.first().startsWith(
      QString(address).replace(u"http:"_s, u"corvxurl:"_s) + u"corvxdata::"_s));
  expectPageAsSeen(mergedPage(program.opened.first()), server);

  browsers::AddOnFrontPage front(door);
  ASSERT_TRUE(front.isRunning());
  EXPECT_EQ(elsewhere([&] { return front.address(); }), address);
  EXPECT_TRUE(elsewhere([&] { return front.capture(); }).document.has_value());
}

}  // namespace
