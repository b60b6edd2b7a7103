#include "platform/web/KeptProfile.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "Recorder.h"
#include "platform/web/Engine.h"
#include "platform/web/LiveView.h"
#include "support/HttpServer.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

/// A site with a login that lasts, and browsers that come and go with one profile.
class KeptProfileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    server.set(u"/login"_s, {"<script>localStorage.note = 'kept'</script>", "text/html", "200 OK",
                             "Set-Cookie: login=ada; Max-Age=86400\r\n"});
    server.setPage(u"/account"_s, "<script>document.title = localStorage.note || 'none'</script>");
  }
  std::unique_ptr<web::Engine> startBrowser() {
    return std::make_unique<web::Engine>(web::EngineOptions{.profileFolder = path});
  }
  std::shared_ptr<web::Page> visit(web::Engine& engine, const QString& at) {
    const auto page = engine.createPage();
    const auto recorder = std::make_shared<Recorder>();
    page->addObserver(recorder);
    page->load({server.url(at)});
    EXPECT_TRUE(support::waitFor([&] { return recorder->ended(); }));
    EXPECT_FALSE(recorder->failure) << qPrintable(recorder->failure->localizedDescription);
    return page;
  }
  bool isLoggedIn(web::Engine& engine) {
    const auto page = visit(engine, u"/account"_s);
    const bool sent = server.head(u"/account"_s).contains("login=ada");
    EXPECT_EQ(page->title(), sent ? u"kept"_s : u"none"_s);
    return sent;
  }

  QTemporaryDir folder;
  const QString path = folder.filePath(u"data/browser"_s);
  HttpServer server;
};

TEST_F(KeptProfileTest, ALoginLastsUntilItIsClearedForGood) {
  auto engine = startBrowser();
  visit(*engine, u"/login"_s);
  EXPECT_EQ(QFileInfo(path).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
  engine = startBrowser();
  EXPECT_TRUE(isLoggedIn(*engine));
  {
    const auto page = visit(*engine, u"/account"_s);
    web::LiveView::create(page)->clearCookies();
    std::optional<bool> cleared;
    page->evaluate(u"1"_s, [&](const auto&) { cleared = true; });
    ASSERT_TRUE(support::waitFor([&] { return cleared.has_value(); }));
  }
  EXPECT_FALSE(isLoggedIn(*engine));
  engine = startBrowser();
  EXPECT_FALSE(isLoggedIn(*engine));
}

TEST_F(KeptProfileTest, AKilledBrowserLeavesAProfileThatTheNextOneTakesUp) {
  auto engine = startBrowser();
  visit(*engine, u"/login"_s);
  engine = startBrowser();
  ASSERT_TRUE(isLoggedIn(*engine));
  ::kill(static_cast<pid_t>(engine->processIdentifier().value()), SIGKILL);
  ASSERT_TRUE(support::waitFor([&] { return !engine->processIdentifier(); }));
  // A browser on a computer of another name would have left such a mark.
  QFile::link(u"elsewhere-4711"_s, path + u"/SingletonLock"_s);
  EXPECT_TRUE(isLoggedIn(*engine));
  EXPECT_FALSE(QFileInfo(path + u"/SingletonLock"_s).symLinkTarget().endsWith(u"4711"));
}

TEST_F(KeptProfileTest, ASecondProgramHasAProfileOfItsOwn) {
  auto engine = startBrowser();
  visit(*engine, u"/login"_s);
  {
    const auto second = startBrowser();
    EXPECT_FALSE(isLoggedIn(*second));
    EXPECT_TRUE(isLoggedIn(*engine));
  }
  engine = startBrowser();
  EXPECT_TRUE(isLoggedIn(*engine));
}

TEST_F(KeptProfileTest, WhereNothingCanBeKeptPagesLoadAllTheSame) {
  ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_FALSE(web::KeptProfile::hold(path));
  const auto engine = startBrowser();
  EXPECT_FALSE(isLoggedIn(*engine));
}

}  // namespace
