#include "platform/web/Engine.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "EngineFixture.h"
#include "platform/web/EngineProgram.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace {

/// Processes of the session that the browser leads; one that has ended but was not collected by its
/// own parent does not count.
int livingProcesses(qint64 session) {
  int living = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream file(entry.path() / "stat");
    std::string line;
    if (!std::getline(file, line)) continue;
    std::istringstream rest(line.substr(line.rfind(')') + 1));
    std::string state;
    long long parent = 0, group = 0, leader = 0;
    rest >> state >> parent >> group >> leader;
    if (leader == session && state != "Z") ++living;
  }
  return living;
}

QStringList engineFolders() {
  return QDir::temp().entryList({u"corvalis-engine-*"_s}, QDir::Dirs | QDir::Hidden);
}

/// In a temporary folder of its own: other programs on this computer have engines too.
class BrowserLife : public ::testing::Test {
 protected:
  void SetUp() override { qputenv("TMPDIR", folder_.path().toLocal8Bit()); }
  void TearDown() override {
    EXPECT_TRUE(engineFolders().isEmpty());
    qputenv("TMPDIR", before_);
  }
  std::shared_ptr<Recorder> watch(web::Page& page) {
    auto recorder = std::make_shared<Recorder>();
    page.addObserver(recorder);
    return recorder;
  }
  HttpServer server;

 private:
  QTemporaryDir folder_;
  const QByteArray before_ = qEnvironmentVariable("TMPDIR", u"/tmp"_s).toLocal8Bit();
};

TEST_F(BrowserLife, ShutdownLeavesNoProcessAndNoFolder) {
  web::Engine engine;
  const auto page = engine.createPage();
  const auto recorder = watch(*page);
  server.setPage(u"/"_s, "<p>");
  page->load({server.url(u"/"_s)});
  ASSERT_TRUE(support::waitFor([&] { return recorder->finished(); }));
  const qint64 process = engine.processIdentifier().value();
  EXPECT_GT(livingProcesses(process), 1);
  EXPECT_EQ(engineFolders().size(), 1);
  engine.shutdown();
  EXPECT_FALSE(engine.processIdentifier());
  EXPECT_TRUE(support::waitFor([&] { return livingProcesses(process) == 0; }));
  EXPECT_TRUE(engineFolders().isEmpty());
  // What is asked of a page of the past fails, and says that this was meant.
  page->load({server.url(u"/"_s)});
  ASSERT_TRUE(support::waitFor([&] { return recorder->failure.has_value(); }));
  EXPECT_EQ(recorder->failure->code, web::EngineShutDown);
}

TEST_F(BrowserLife, AKilledBrowserFailsItsLoadAndTheNextPageHasANewOne) {
  web::Engine engine;
  auto page = engine.createPage();
  auto recorder = watch(*page);
  server.set(u"/never"_s, {"", "", "", "", HttpServer::Answer::Kind::Never});
  page->load({server.url(u"/never"_s)});
  ASSERT_TRUE(support::waitFor([&] { return recorder->count("start") == 1; }));
  const qint64 process = engine.processIdentifier().value();
  ::kill(static_cast<pid_t>(process), SIGKILL);
  ASSERT_TRUE(support::waitFor([&] { return recorder->failure.has_value(); }));
  EXPECT_EQ(recorder->failure->domain.toStdString(), "web");
  EXPECT_EQ(recorder->failure->code, web::EngineEnded);
  EXPECT_TRUE(support::waitFor([&] { return livingProcesses(process) == 0; }));
  EXPECT_TRUE(support::waitFor([&] { return engineFolders().isEmpty(); }));

  page = engine.createPage();
  recorder = watch(*page);
  server.setPage(u"/"_s, "<title>Again</title>");
  page->load({server.url(u"/"_s)});
  ASSERT_TRUE(support::waitFor([&] { return recorder->ended(); }));
  EXPECT_EQ(page->title().toStdString(), "Again");
}

TEST_F(BrowserLife, ACrashedPageFailsAndCanLoadAgain) {
  web::Engine engine;
  const auto page = engine.createPage();
  const auto recorder = watch(*page);
  server.set(u"/never"_s, {"", "", "", "", HttpServer::Answer::Kind::Never});
  server.setPage(u"/crash"_s, "<title>Here</title><img src=/never>");
  page->load({server.url(u"/crash"_s)});
  ASSERT_TRUE(support::waitFor([&] { return recorder->count("title") == 1; }));
  page->send(u"Page.crash"_s);
  ASSERT_TRUE(support::waitFor([&] { return recorder->crash.has_value(); }));
  ASSERT_TRUE(recorder->failure);
  EXPECT_EQ(recorder->failure->code, web::PageCrashed);
  EXPECT_EQ(recorder->failedPhase, web::LoadPhase::Committed);
  server.setPage(u"/"_s, "<title>Revived</title>");
  page->load({server.url(u"/"_s)});
  ASSERT_TRUE(support::waitFor([&] { return recorder->finished(); }));
  EXPECT_EQ(page->title().toStdString(), "Revived");
}

TEST_F(BrowserLife, FoldersOfKilledProgramsAreRemovedByTheNext) {
  QDir abandoned(QDir::temp().filePath(u"corvalis-engine-abandoned"_s));
  ASSERT_TRUE(QDir().mkpath(abandoned.filePath(u"profile"_s)));
  std::filesystem::last_write_time(
      abandoned.path().toStdString(),
      std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  web::Engine engine;
  engine.warmUp();
  EXPECT_FALSE(abandoned.exists());
}

struct BrokenBrowser {
  const char* name;
  const char* script;
  web::ErrorCode code;
  const char* words;
};

class BrokenBrowsers : public ::testing::TestWithParam<BrokenBrowser> {};

TEST_P(BrokenBrowsers, FailThePageWithAReason) {
  QTemporaryDir folder;
  const QString program = folder.filePath(u"browser"_s);
  if (*GetParam().script) {
    QFile file(program);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(GetParam().script);
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }
  web::Engine engine({.program = program});
  const auto page = engine.createPage();
  const auto recorder = std::make_shared<Recorder>();
  page->addObserver(recorder);
  page->load({QUrl(u"http://127.0.0.1/"_s)});
  ASSERT_TRUE(support::waitFor([&] { return recorder->failure.has_value(); }));
  EXPECT_EQ(recorder->failure->code, GetParam().code);
  EXPECT_THAT(recorder->failure->localizedDescription.toStdString(),
              ::testing::HasSubstr(GetParam().words));
}

INSTANTIATE_TEST_SUITE_P(
    Programs, BrokenBrowsers,
    ::testing::Values(
        BrokenBrowser{"Missing", "", web::EngineNotFound, "is not a program"},
        BrokenBrowser{"NotRunnable", "#!/no/such/interpreter\n", web::EngineNotStarted,
                      "could not be started"},
        BrokenBrowser{"EndsAtOnce", "#!/bin/sh\nexit 1\n", web::EngineEnded, "has ended"},
        BrokenBrowser{"NoSandbox", "#!/bin/sh\necho 'No usable sandbox!' >&2\nexit 1\n",
                      web::EngineNotStarted, "sandbox"},
        BrokenBrowser{"SendsRubbish", "#!/bin/sh\nprintf '{\"id\": 1, broken\\0' >&4\nsleep 60\n",
                      web::DamagedReply, "damaged message"}),
    [](const auto& tested) { return tested.param.name; });

TEST(ShellWords, AreSplitAsAShellDoes) {
  const std::pair<const char*, QStringList> rows[] = {
      {"", {}},
      {"  --a   --b=c ", {u"--a"_s, u"--b=c"_s}},
      {"--rules='MAP * ~NOTFOUND, EXCLUDE localhost' -x",
       {u"--rules=MAP * ~NOTFOUND, EXCLUDE localhost"_s, u"-x"_s}},
      {"\"two words\" '' a\\ b", {u"two words"_s, u""_s, u"a b"_s}},
      {"\"say \\\"hi\\\" \\n\" 'back\\slash'", {u"say \"hi\" \\n"_s, u"back\\slash"_s}},
      {"'never closed", {u"never closed"_s}},
  };
  for (const auto& [text, words] : rows)
    EXPECT_EQ(web::splitShellWords(QString::fromUtf8(text)), words) << text;
}

}  // namespace
