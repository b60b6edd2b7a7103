#include <gtest/gtest.h>
#include <signal.h>

#include <QImage>

#include "AccessibleProgram.h"
#include "ProcessTree.h"
#include "Session.h"
#include "intake/Requests.h"
#include "support/HttpServer.h"

using namespace Qt::StringLiterals;

namespace {

/// The tall one is still being converted when a test has seen that it is.
enum class Height { Low = 100, Tall = 40'000 };

QString page(const QString& title, Height height) {
  const QString markup =
      u"<html><head><title>%1</title></head><body><div style='height:%2px;background:"
      "repeating-conic-gradient(#123 0 9deg,#8ac 0 18deg)'></div></body></html>"_s;
  return requests::fullRequest(u"corvxurl://127.0.0.1/page"_s, markup.arg(title).arg(int(height)),
                               u""_s, u""_s);
}

class Ending : public testing::Test {
 protected:
  Ending() {
    server_.set(u"/never"_s, {{}, {}, {}, {}, HttpServer::Answer::Kind::Never});
    session_.recordEngineStarts();
  }

  /// One page is being converted, one loads and does not come, others wait.
  QProcess& startWorking() {
    QProcess& program = session_.startCorvalis();
    session_.sendRequest(page(u"Tall"_s, Height::Tall));
    awaitRow(u"Processing..."_s);
    session_.sendRequest(server_.url(u"/never"_s).toString());
    awaitRow(u"Downloading..."_s);
    session_.sendRequest(page(u"Waiting"_s, Height::Low));
    return program;
  }

  bool hasRow(const QString& state) { return !session_.corvalis().rows().filter(state).isEmpty(); }

  void awaitRow(const QString& state) {
    EXPECT_TRUE(inTime([&] { return hasRow(state); }))
        << session_.corvalis().rows().join(u'\n').toStdString();
  }

  /// With it, all that it has started.
  void expectEnd(QProcess& program, const ProcessTree& processes) {
    EXPECT_TRUE(inTime([&] { return program.state() == QProcess::NotRunning; }));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(inTime([&] { return processes.hasEnded(); }));
    EXPECT_EQ(session_.leftovers(), QStringList());
    EXPECT_EQ(session_.workFiles(), QStringList());
  }

  void expectWholeFilesOnly() {
    for (const QString& file : session_.files()) {
      EXPECT_EQ(file, u"Tall.png"_s);
      EXPECT_FALSE(QImage(session_.downloads() + u'/' + file).isNull());
    }
  }

  HttpServer server_;
  Session session_;
};

}  // namespace

TEST_F(Ending, ClosingTheWindowEndsTheWorkAndTheEngine) {
  QProcess& program = startWorking();
  const ProcessTree processes(program.processId());
  EXPECT_GT(processes.size(), 2) << "no engine runs";
  session_.pressKeys({u"ctrl+w"_s});
  expectEnd(program, processes);
  expectWholeFilesOnly();
  EXPECT_EQ(session_.engineStarts(), 1) << "a waiting page brought the engine back";
}

TEST_F(Ending, TerminationEndsTheWorkAndTheEngine) {
  QProcess& program = startWorking();
  const ProcessTree processes(program.processId());
  program.terminate();
  expectEnd(program, processes);
  expectWholeFilesOnly();
  EXPECT_EQ(session_.engineStarts(), 1) << "a waiting page brought the engine back";
}

TEST_F(Ending, KilledProgramTakesItsEngineAlong) {
  QProcess& program = startWorking();
  const ProcessTree processes(program.processId());
  program.kill();
  EXPECT_TRUE(inTime([&] { return processes.hasEnded(); }));
  expectWholeFilesOnly();
}

TEST_F(Ending, KilledEngineFailsItsPagesAndTheNextPageHasANewOne) {
  QProcess& program = startWorking();
  const ProcessTree processes(program.processId());
  const qint64 engine = processes.find("--remote-debugging-pipe");
  ASSERT_GT(engine, 0);
  ::kill(pid_t(engine), SIGKILL);
  awaitRow(u"Error capturing..."_s);
  awaitRow(u"Error downloading URL..."_s);
  awaitRow(u"Done..."_s);
  EXPECT_EQ(session_.files(), QStringList{u"Waiting.png"_s});
  const ProcessTree successors(program.processId());
  session_.pressKeys({u"ctrl+q"_s});
  expectEnd(program, successors);
}
