#include <gtest/gtest.h>
#include <signal.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

#include "platform/pdf/DocumentFacts.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using support::waitFor;

namespace {

struct Outcome {
  int status = -1;
  QString output;
  QString errors;

  QStringList lines() const { return output.split(u'\n', Qt::SkipEmptyParts); }
  QJsonObject json(int line) const {
    return QJsonDocument::fromJson(lines().value(line).toUtf8()).object();
  }
};

/// The program itself, over files and servers of the test's own.
class CaptureCommandTest : public testing::Test {
 protected:
  std::unique_ptr<QProcess> start(const QStringList& arguments) const {
    auto program = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Nothing of the engine may stay here.
    environment.insert(u"TMPDIR"_s, temporary.path());
    environment.remove(u"QT_QPA_PLATFORM"_s);
    program->setProcessEnvironment(environment);
    program->setWorkingDirectory(folder.path());
    program->start(QStringLiteral(CORVALIS_PROGRAM), arguments);
    return program;
  }

  static Outcome end(QProcess& program) {
    EXPECT_TRUE(
        waitFor([&] { return program.state() == QProcess::NotRunning; }, std::chrono::seconds(90)));
    return {program.exitCode(), QString::fromUtf8(program.readAllStandardOutput()),
            QString::fromUtf8(program.readAllStandardError())};
  }

  Outcome capture(const QStringList& arguments, const QByteArray& input = {}) const {
    const auto program = start(QStringList{u"capture"_s} + arguments);
    program->write(input);
    program->closeWriteChannel();
    return end(*program);
  }

  void page(const QString& name, const QString& title) const {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        u"<!DOCTYPE html><title>%1</title><body style='margin:0'>"
        "<div style='height:1200px'>words of %1</div>"_s.arg(title)
            .toUtf8());
  }

  bool leftNothingBehind() const {
    const QDir work(qEnvironmentVariable("XDG_CACHE_HOME") + u"/corvalis/work"_s);
    const auto all = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden;
    return QDir(temporary.path()).entryList(all).isEmpty() && work.entryList(all).isEmpty();
  }

  QTemporaryDir folder;
  QTemporaryDir temporary;
};

TEST_F(CaptureCommandTest, SourcesBecomeFilesNamedByTheirTitles) {
  page(u"a.html"_s, u"First"_s);
  page(u"b.html"_s, u"Second"_s);
  const Outcome run =
      capture({u"a.html"_s, u"b.html"_s, u"-o"_s, u"out/"_s, u"--format"_s, u"PNG"_s});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.errors, QString());
  EXPECT_EQ(run.lines(), (QStringList{folder.filePath(u"out/First.png"_s),
                                      folder.filePath(u"out/Second.png"_s)}));
  EXPECT_EQ(QImage(folder.filePath(u"out/Second.png"_s)).size(), QSize(1024, 1200));
  EXPECT_TRUE(leftNothingBehind());
}

TEST_F(CaptureCommandTest, TheReportSaysWhatWasMade) {
  page(u"a.html"_s, u"First"_s);
  const Outcome run =
      capture({u"a.html"_s, u"missing.html"_s, u"--json"_s, u"--width"_s, u"800"_s});
  EXPECT_EQ(run.status, 1);
  ASSERT_EQ(run.lines().size(), 2);
  const QJsonObject made = run.json(0);
  EXPECT_EQ(made[u"source"_s], u"a.html"_s);
  EXPECT_EQ(made[u"title"_s], u"First"_s);
  EXPECT_EQ(made[u"format"_s], u"PDF"_s);
  EXPECT_EQ(made[u"pages"_s], 1);
  EXPECT_NEAR(made[u"width"_s].toDouble(), 800, 1);
  EXPECT_NEAR(made[u"height"_s].toDouble(), 1200, 1);
  const QFileInfo file(made[u"file"_s].toString());
  EXPECT_TRUE(file.exists());
  EXPECT_EQ(made[u"bytes"_s].toInteger(), file.size());
  EXPECT_TRUE(made[u"error"_s].isNull());
  EXPECT_TRUE(run.json(1)[u"file"_s].isNull());
  EXPECT_FALSE(run.json(1)[u"error"_s].toString().isEmpty());
}

TEST_F(CaptureCommandTest, EachFailureIsNamedAndTheRestIsDone) {
  page(u"good.html"_s, u"Good"_s);
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  QTcpServer closed;
  ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
  const quint16 refused = closed.serverPort();
  closed.close();
  const QString silentAddress = u"http://127.0.0.1:%1/"_s.arg(silent.serverPort());
  const QString refusedAddress = u"http://127.0.0.1:%1/"_s.arg(refused);
  const Outcome run =
      capture({u"missing.html"_s, silentAddress, refusedAddress, u"."_s, u"good.html"_s});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.lines(), QStringList{folder.filePath(u"./Good.pdf"_s).replace(u"/./"_s, u"/"_s)});
  const QStringList errors = run.errors.split(u'\n', Qt::SkipEmptyParts);
  ASSERT_EQ(errors.size(), 4);
  EXPECT_TRUE(errors[0].startsWith("corvalis: missing.html: "_L1));
  EXPECT_TRUE(errors[1].contains(silentAddress) && errors[1].contains("answer"_L1));
  EXPECT_TRUE(errors[2].contains(refusedAddress));
  EXPECT_TRUE(errors[3].startsWith("corvalis: .: "_L1));
}

TEST_F(CaptureCommandTest, PlacesThatCannotBeWrittenAreSaidSo) {
  page(u"a.html"_s, u"First"_s);
  const Outcome run = capture({u"a.html"_s, u"-o"_s, u"a.html/below/"_s});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.errors.contains("a.html"_L1));
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"a.html"_s});
}

TEST_F(CaptureCommandTest, AnExactFileIsReplaced) {
  page(u"a.html"_s, u"First"_s);
  for (int round = 0; round < 2; ++round) {
    const Outcome run = capture({u"a.html"_s, u"-o"_s, u"chosen.bmp"_s});
    EXPECT_EQ(run.status, 0) << qPrintable(run.errors);
    EXPECT_EQ(run.lines(), QStringList{folder.filePath(u"chosen.bmp"_s)});
  }
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files),
            (QStringList{u"a.html"_s, u"chosen.bmp"_s}));
}

TEST_F(CaptureCommandTest, AFileIsCalledAndMadeAsItsNameSays) {
  page(u"a.html"_s, u"First"_s);
  struct Row {
    QStringList arguments;
    QString file;
    QByteArray format;
  };
  for (const Row& row :
       {Row{{u"-o"_s, u"x.jpeg"_s, u"--format"_s, u"JPEG"_s}, u"x.jpeg"_s, "jpeg"},
        Row{{u"-o"_s, u"X.PNG"_s}, u"X.PNG"_s, "png"},
        Row{{u"-o"_s, u"x.jpg"_s, u"--format"_s, u"BMP"_s}, u"x.jpg.bmp"_s, "bmp"}}) {
    const Outcome run = capture(QStringList{u"a.html"_s} + row.arguments);
    EXPECT_EQ(run.status, 0) << qPrintable(run.errors);
    EXPECT_EQ(run.lines(), QStringList{folder.filePath(row.file)});
    EXPECT_EQ(QImageReader::imageFormat(folder.filePath(row.file)), row.format);
  }
}

TEST_F(CaptureCommandTest, ARequestComesOverStandardInput) {
  const auto encoded = [](const QByteArray& text) { return text.toPercentEncoding().toBase64(); };
  const QByteArray request = "corvxurl://localhost:9/deep/page?q=1corvxdata::" +
                             encoded("<html><head><title>Sent</title></head><body>seen") +
                             "corvxstyles::" + encoded("body { color: red }") + "iframes::";
  const Outcome run = capture({u"-"_s, u"--json"_s}, request);
  EXPECT_EQ(run.status, 0) << qPrintable(run.errors);
  EXPECT_EQ(run.json(0)[u"title"_s], u"Sent"_s);
  EXPECT_EQ(run.json(0)[u"address"_s], u"http://localhost:9/deep/page?q=1"_s);
  EXPECT_EQ(capture({u"-"_s}, "no request at all\xff").status, 1);
}

TEST_F(CaptureCommandTest, ManySourcesBecomeOneDocument) {
  page(u"a.html"_s, u"First"_s);
  page(u"b.html"_s, u"Second"_s);
  const Outcome run = capture({u"a.html"_s, u"b.html"_s, u"--multipage"_s, u"all.pdf"_s});
  EXPECT_EQ(run.status, 0) << qPrintable(run.errors);
  EXPECT_EQ(run.lines(), QStringList{folder.filePath(u"all.pdf"_s)});
  const auto facts = pdf::documentFacts(folder.filePath(u"all.pdf"_s));
  ASSERT_TRUE(facts);
  EXPECT_GE(facts->pageCount(), 2);
  EXPECT_TRUE(facts->hasOutline);
}

TEST_F(CaptureCommandTest, ADocumentOfNothingButMissingPagesFailsInWords) {
  QStringList arguments{u"--multipage"_s, u"none.pdf"_s};
  for (int index = 0; index < 6; ++index)
    arguments.append(u"missing%1.html"_s.arg(index));
  const Outcome run = capture(arguments);
  EXPECT_EQ(run.status, 1) << qPrintable(run.errors);
  EXPECT_TRUE(run.errors.contains(u"missing5.html"_s));
  EXPECT_FALSE(QFile::exists(folder.filePath(u"none.pdf"_s)));
}

/// The engine process that belongs to the program.
qint64 engineOf(qint64 program) {
  for (const QString& name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
    QFile status(u"/proc/%1/status"_s.arg(name));
    if (name.toLongLong() == 0 || !status.open(QIODevice::ReadOnly)) continue;
    const QByteArray text = status.readAll();
    if (text.contains("\nPPid:\t" + QByteArray::number(program) + '\n')) return name.toLongLong();
  }
  return 0;
}

TEST_F(CaptureCommandTest, AKilledEngineFailsOneSourceAndLeavesNothing) {
  page(u"good.html"_s, u"Good"_s);
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const auto program =
      start({u"capture"_s, u"http://127.0.0.1:%1/"_s.arg(silent.serverPort()), u"good.html"_s});
  ASSERT_TRUE(waitFor([&] { return silent.hasPendingConnections(); }));
  const qint64 engine = engineOf(program->processId());
  ASSERT_GT(engine, 0);
  ::kill(static_cast<pid_t>(engine), SIGKILL);
  const Outcome run = end(*program);
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.errors.contains("127.0.0.1"_L1));
  EXPECT_EQ(run.lines(), QStringList{folder.filePath(u"Good.pdf"_s)});
  EXPECT_TRUE(leftNothingBehind());
}

TEST_F(CaptureCommandTest, AnInterruptedRunEndsItsEngineAndRemovesItsFiles) {
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const auto program = start({u"capture"_s, u"http://127.0.0.1:%1/"_s.arg(silent.serverPort())});
  ASSERT_TRUE(waitFor([&] { return silent.hasPendingConnections(); }));
  const qint64 engine = engineOf(program->processId());
  ::kill(static_cast<pid_t>(program->processId()), SIGINT);
  EXPECT_EQ(end(*program).status, 130);
  EXPECT_NE(::kill(static_cast<pid_t>(engine), 0), 0);
  EXPECT_TRUE(leftNothingBehind());
}

TEST_F(CaptureCommandTest, WrongUsageEndsWithTwo) {
  EXPECT_EQ(capture({}).status, 2);
  EXPECT_EQ(capture({u"--format"_s, u"XCF"_s, u"a"_s}).status, 2);
  const auto unknown = start({u"paint"_s});
  EXPECT_EQ(end(*unknown).status, 2);
  const auto version = start({u"--version"_s});
  EXPECT_TRUE(end(*version).output.startsWith("corvalis "_L1));
}

}  // namespace
