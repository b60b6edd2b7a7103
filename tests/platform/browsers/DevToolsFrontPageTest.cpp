#include "platform/browsers/DevToolsFrontPage.h"

#include <gmock/gmock.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <future>

#include "FakeDevTools.h"
#include "FakeProfile.h"
#include "platform/browsers/DevToolsEndpoint.h"
#include "platform/browsers/FrontTab.h"
#include "platform/desktop/RunningApplications.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using namespace browsers;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

/// Runs the main queue until work on another thread has ended.
template <class Work>
auto elsewhere(Work work) {
  auto result = std::async(std::launch::async, work);
  EXPECT_TRUE(support::waitFor([&] { return result.wait_for(0s) == std::future_status::ready; }));
  return result.get();
}

class DevToolsFrontPageTest : public ::testing::Test {
 protected:
  PageTexts capture() {
    return elsewhere([this] { return page.capture(); });
  }
  std::optional<QString> address() {
    return elsewhere([this] { return page.address(); });
  }
  std::string reason() const { return page.unavailableReason().value_or(QString()).toStdString(); }

  FakeProfile profile;
  DevToolsFrontPage page{desktop::RunningApplications::create(), 300ms};
};

TEST_F(DevToolsFrontPageTest, TheFrontWindowsActiveTabIsFound) {
  struct Window {
    const char16_t* target;
    FakeDevTools::Sight sight;
  };
  struct Case {
    const char* name;
    QList<Window> pages;
    QList<const char16_t*> activeTabs;
    const char16_t* front;
  };
  const Case cases[] = {
      {"one page", {{u"only", FakeDevTools::Hidden}}, {}, u"only"},
      {"two windows, the second has the focus",
       {{u"first", FakeDevTools::Visible}, {u"second", FakeDevTools::Focused}},
       {},
       u"second"},
      {"no window has the focus",
       {{u"behind", FakeDevTools::Hidden},
        {u"seen", FakeDevTools::Visible},
        {u"also", FakeDevTools::Visible}},
       {},
       u"seen"},
      {"active tabs are told",
       {{u"old", FakeDevTools::Visible}, {u"new", FakeDevTools::Hidden}},
       {u"new"},
       u"new"},
  };
  for (const Case& item : cases) {
    FakeDevTools browser;
    for (const Window& window : item.pages) {
      const QString target = QString::fromUtf16(window.target);
      browser.addPage(target, u"http://localhost/"_s + target, window.sight);
      browser.addTab(u"http://localhost/"_s + target, item.activeTabs.contains(window.target));
    }
    browser.addPage(u"tools"_s, u"devtools://devtools/x.html"_s, FakeDevTools::Focused);
    profile.setEndpoint(browser.port());
    EXPECT_EQ(address(), u"http://localhost/"_s + QString::fromUtf16(item.front)) << item.name;
    browser.disconnectAll();
  }
}

TEST(FrontTab, WindowsThatTheDesktopTellsOfComeFirstInTheirOrder) {
  QList<BrowserTab> tabs{{u"hidden"_s, {}, u"News"_s},
                         {u"behind"_s, {}, u"Shop - Offers"_s},
                         {u"other"_s, {}, u"Letters"_s},
                         {u"front"_s, {}, u"Weather"_s}};
  sortByStacking(tabs, {u"Corvalis"_s, u"Weather - Chromium"_s, u"Newsreader - Chromium"_s,
                        u"Shop - Offers - Chromium"_s});
  QStringList order;
  for (const BrowserTab& tab : tabs)
    order << tab.target;
  EXPECT_THAT(order, ElementsAre(u"front"_s, u"behind"_s, u"hidden"_s, u"other"_s));
}

TEST_F(DevToolsFrontPageTest, ThreeTextsComeOverOneConnection) {
  FakeDevTools browser;
  browser.addPage(u"a"_s, u"http://localhost/a"_s, FakeDevTools::Focused);
  profile.setEndpoint(browser.port());
  const PageTexts texts = capture();
  EXPECT_EQ(texts.document, u"<p>a"_s);
  EXPECT_EQ(texts.styles, u"styles"_s);
  EXPECT_EQ(texts.frames, u"frames"_s);
  EXPECT_EQ(texts.address, u"http://localhost/a"_s);
  EXPECT_EQ(page.unavailableReason(), std::nullopt);
  EXPECT_EQ(address(), u"http://localhost/a"_s);
  EXPECT_EQ(browser.connections(), 1);

  // The browser was started anew in between.
  browser.disconnectAll();
  EXPECT_EQ(capture().document, u"<p>a"_s);
  EXPECT_EQ(browser.connections(), 2);
}

TEST_F(DevToolsFrontPageTest, AHangingTabDoesNotHideTheOthers) {
  FakeDevTools browser;
  browser.addPage(u"stuck"_s, u"http://localhost/stuck"_s, FakeDevTools::Visible);
  browser.addPage(u"fine"_s, u"http://localhost/fine"_s, FakeDevTools::Visible);
  browser.hang(u"stuck"_s);
  profile.setEndpoint(browser.port());
  EXPECT_EQ(address(), u"http://localhost/fine"_s);
}

TEST_F(DevToolsFrontPageTest, AClosedDoorIsExplained) {
  EXPECT_EQ(capture().document, std::nullopt);
  EXPECT_THAT(reason(), HasSubstr("chrome://inspect/#remote-debugging"));
  EXPECT_THAT(reason(), HasSubstr("add-on"));

  for (const QByteArray& answer :
       {QByteArray("HTTP/1.1 404 Not Found\r\n\r\n"), QByteArray("HTTP/1.1 403 Forbidden\r\n\r\n"),
        QByteArray("SSH-2.0-server\r\n"), QByteArray()}) {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&] {
      QTcpSocket* socket = server.nextPendingConnection();
      QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] {
        socket->write(answer);
        socket->disconnectFromHost();
      });
    });
    profile.setEndpoint(server.serverPort());
    EXPECT_EQ(capture().document, std::nullopt);
    EXPECT_THAT(reason(), HasSubstr("chrome://inspect/#remote-debugging")) << answer.toStdString();
  }
}

TEST_F(DevToolsFrontPageTest, ABrowserThatAsksItsUserIsNotAskedAgainInPassing) {
  QTcpServer silent;
  int connections = 0;
  QObject::connect(&silent, &QTcpServer::newConnection, &silent, [&] { ++connections; });
  silent.listen(QHostAddress::LocalHost);
  profile.setEndpoint(silent.serverPort());
  EXPECT_EQ(capture().document, std::nullopt);
  EXPECT_THAT(reason(), HasSubstr("allow"));
  EXPECT_EQ(connections, 1);
  EXPECT_EQ(address(), std::nullopt);
  EXPECT_EQ(connections, 1);
  (void)capture();
  EXPECT_EQ(connections, 2);
}

TEST_F(DevToolsFrontPageTest, WhatAnEndedBrowserLeftBehindIsNotAsked) {
  FakeDevTools browser;
  browser.addPage(u"a"_s, u"http://localhost/a"_s, FakeDevTools::Focused);
  profile.setEndpoint(browser.port());
  profile.lock(QSysInfo::machineHostName(), 0x7fffffff);
  EXPECT_EQ(address(), std::nullopt);
  profile.lock(u"another-machine"_s, profile.process());
  EXPECT_EQ(address(), std::nullopt);
  EXPECT_EQ(browser.connections(), 0);
}

TEST_F(DevToolsFrontPageTest, ADamagedEndpointIsNone) {
  for (const char* contents :
       {"", "\n", "9222", "0\n/devtools/browser/x", "70000\n/devtools/browser/x",
        "9222\n@example.com/devtools/browser/x", "9222\n/devtools/browser/../x y",
        "-1\n/devtools/browser/x"}) {
    profile.setEndpoint(QByteArray(contents));
    EXPECT_EQ(readEndpoint(FakeProfile::folder()), std::nullopt) << contents;
  }
  profile.setEndpoint("9222\n/devtools/browser/0a-b1\n");
  ASSERT_TRUE(readEndpoint(FakeProfile::folder()));
  EXPECT_EQ(readEndpoint(FakeProfile::folder())->address(),
            QUrl(u"ws://127.0.0.1:9222/devtools/browser/0a-b1"_s));
}

}  // namespace
