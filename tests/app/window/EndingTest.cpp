#include <gtest/gtest.h>
#include <signal.h>

#include <QImage>

#include "AccessibleProgram.h"
#include "ProcessTree.h"
#include "Session.h"
#include "intake/Requests.h"
#include "platform/web/HttpServer.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using support::waitFor;

namespace {

/// So tall that it is still being converted when the test has seen that it is.
QString tallPage(const QString& title) {
  return requests::fullRequest(
      u"corvxurl://127.0.0.1/tall"_s,
      u"<html><head><title>%1</title></head><body><div style='height:60000px;background:"
      "repeating-conic-gradient(#123 0 9deg,#8ac 0 18deg)'></div></body></html>"_s.arg(title),
      u""_s, u""_s);
}

class Ending : public testing::Test {
 protected:
  Ending() { server_.set(u"/never"_s, {{}, {}, {}, {}, HttpServer::Answer::Kind::Never}); }

  /// One page is being converted, one loads and does not come, others wait.
  QProcess& startWorking() {
    QProcess& program = session_.startCorvalis();
    session_.sendRequest(tallPage(u"Tall"_s));
    awaitRow(u"Processing..."_s);
    session_.sendRequest(server_.url(u"/never"_s).toString());
    awaitRow(u"Downloading..."_s);
    session_.sendRequest(tallPage(u"Waiting"_s));
    return program;
  }

  bool hasRow(const QString& state) { return !session_.corvalis().rows().filter(state).isEmpty(); }

  void awaitRow(const QString& state) {
    EXPECT_TRUE(waitFor([&] { return hasRow(state); }))
        << session_.corvalis().rows().join(u'\n').toStdString();
  }

  /// With it, all that it has started.
  void expectEnd(QProcess& program, const ProcessTree& processes) {
    EXPECT_TRUE(waitFor([&] { return program.state() == QProcess::NotRunning; }));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(waitFor([&] { return processes.hasEnded(); }));
    EXPECT_EQ(session_.leftovers(), QStringList());
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
}

TEST_F(Ending, TerminationEndsTheWorkAndTheEngine) {
  QProcess& program = startWorking();
  const ProcessTree processes(program.processId());
  program.terminate();
  expectEnd(program, processes);
  expectWholeFilesOnly();
}

TEST_F(Ending, KilledProgramTakesItsEngineAlong) {
  QProcess& program = startWorking();
  const ProcessTree processes(program.processId());
  program.kill();
  EXPECT_TRUE(waitFor([&] { return processes.hasEnded(); }));
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
