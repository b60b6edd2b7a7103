// From a login in the mini browser to the file on the disk, with every part real but the site.

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include "capture/CVURLEntry.h"
#include "intake/CVAppDelegate.h"
#include "platform/desktop/Notifications.h"
#include "platform/desktop/SoundPlayer.h"
#include "platform/web/Engine.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "support/HttpServer.h"
#include "support/Wait.h"
#include "ui/minibrowser/CVMiniBrowserWindow.h"
#include "ui/minibrowser/LivePageView.h"
#include "ui/queue/CVEntryTableController.h"

using namespace Qt::StringLiterals;

namespace {

class QuietNotifications : public desktop::Notifications {
  void deliver(const desktop::Notification&) override {}
};
class QuietSounds : public desktop::SoundPlayer {
  void play(const QString&) override {}
};

class LoginToFile : public ::testing::Test {
 protected:
  void SetUp() override {
    CVCaptureServices capture;
    capture.engine = engine;
    CVAppDelegate::Services services;
    services.makeEntry = [capture](const QUrl& url, const std::optional<QString>& source,
                                   bool forceJavascript, const QSizeF& size) {
      return std::make_shared<CVURLEntry>(capture, url, source, forceJavascript, size);
    };
    services.userDefaults = defaults::UserDefaults::inMemory();
    delegate = CVAppDelegate::create(std::move(services));
    delegate->setTableViewController(table);
    delegate->applicationWillFinishLaunching();
    delegate->doFinishApplicationLaunch();
    auto& settings = *CVObjectRepository::singleton().getPreferences();
    settings.setFormat(u"PNG"_s);
    settings.setDownloadLocation(QUrl::fromLocalFile(folder.path()));
    settings.setProcessAutomatically(true);
    browser = CVMiniBrowserWindow::create(engine);
    browser->setDelegate(delegate);
    browser->resize(700, 500);
    page = browser->findChild<LivePageView*>();
  }
  void TearDown() override {
    browser.reset();
    delegate->setTableViewController(nullptr);
    for (const QString& name : {u"preferences"_s, u"entryTaskManager"_s, u"utils"_s})
      CVObjectRepository::singleton().addObject(nullptr, name);
  }
  /// A page that is green for those who are logged in, with a field that turns red when its text is
  /// kept and a part that is given to nobody else.
  void makeSite() {
    server.setPage(u"/login"_s,
                   "<style>*{margin:0}</style><form method=post action=/session>"
                   "<input name=user style='width:200px;height:30px'></form>");
    server.set(u"/session"_s, {"", "text/html", "303 See Other",
                               "Location: /account\r\nSet-Cookie: login=ada; Path=/\r\n"});
    server.setPage(
        u"/account"_s,
        "<!DOCTYPE html><title>Account</title><style>* {margin:0; border:0; padding:0}"
        "body {height:1800px} .in {background:#00ff00} [value=Typed] {background:#ff0000;"
        "color:#ff0000}</style><input style='display:block;width:200px;height:30px'>"
        "<img src=/private width=1 height=1><script>"
        "if (document.cookie.includes('login=ada')) document.body.className = 'in'</script>");
  }
  bool pageHas(const QString& condition) {
    return support::waitFor([&] {
      std::optional<bool> has;
      browser->webView()->evaluateJavaScript(
          condition, [&has](const Result<QJsonValue>& value) { has = value && value->toBool(); });
      support::waitFor([&has] { return has.has_value(); });
      return *has;
    });
  }
  void type(const QPoint& place, const QString& text) {
    QTest::mouseClick(page, Qt::LeftButton, {}, place);
    QTest::keyClicks(page, text);
  }

  HttpServer server;
  QTemporaryDir folder;
  std::shared_ptr<web::Engine> engine = std::make_shared<web::Engine>();
  std::shared_ptr<CVEntryTableController> table = CVEntryTableController::create(
      {std::make_shared<QuietNotifications>(), std::make_shared<QuietSounds>()});
  std::shared_ptr<CVAppDelegate> delegate;
  std::shared_ptr<CVMiniBrowserWindow> browser;
  LivePageView* page = nullptr;
};

}  // namespace

TEST_F(LoginToFile, theFileShowsThePageThatTheUserLoggedIntoAtTheBrowsersWidth) {
  makeSite();
  browser->loadURL(server.url(u"/login"_s));
  browser->makeKeyAndOrderFront();
  auto& snapButton = *browser->findChild<QToolButton*>(u"snapButton"_s);
  ASSERT_TRUE(support::waitFor([&] { return snapButton.isEnabled(); }));
  type({20, 10}, u"ada"_s);
  QTest::keyClick(page, Qt::Key_Return);
  ASSERT_TRUE(pageHas(u"document.readyState === 'complete' && document.title === 'Account'"_s));
  type({20, 10}, u"Typed"_s);
  ASSERT_TRUE(pageHas(u"document.querySelector('input').value === 'Typed'"_s));
  QWheelEvent wheel({200, 200}, page->mapToGlobal(QPointF(200, 200)), {0, -600}, {}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(page, &wheel);
  ASSERT_TRUE(pageHas(u"scrollY > 500"_s));
  const QStringList before = server.requests();
  QTest::mouseClick(&snapButton, Qt::LeftButton);
  QImage file;
  ASSERT_TRUE(support::waitFor([&] { return file.load(folder.filePath(u"Account.png"_s)); },
                               std::chrono::seconds(60)));
  EXPECT_EQ(file.size(), QSize(page->width(), 1800));
  EXPECT_EQ(file.pixelColor(600, 1700), QColor(0, 255, 0));
  EXPECT_EQ(file.pixelColor(150, 15), QColor(255, 0, 0));
  // The document came from the browser; its parts are fetched as the one who is logged in.
  const QStringList after = server.requests().mid(before.size());
  EXPECT_FALSE(after.contains(u"/account"_s));
  EXPECT_TRUE(after.contains(u"/private"_s));
  EXPECT_TRUE(server.head(u"/private"_s).contains("login=ada"));
}
