#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "../platform/printing/Scheduler.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

/// What poppler lists of the document's pictures, one line each.
QStringList picturesIn(const QString& document) {
  QProcess tool;
  tool.start(u"pdfimages"_s, {u"-list"_s, document});
  EXPECT_TRUE(tool.waitForFinished());
  EXPECT_EQ(tool.exitCode(), 0);
  constexpr qsizetype headLines = 2;
  const QString list = QString::fromUtf8(tool.readAllStandardOutput());
  return list.split(u'\n', Qt::SkipEmptyParts).mid(headLines);
}

/// The program itself, with a print scheduler of the test's own.
class PrintedCapture : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(scheduler);
    write(u"a.html"_s, "<!DOCTYPE html><title>First</title><p>words of the page");
  }

  void write(const QString& name, const QByteArray& contents) const {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
  }

  void print(const QStringList& mode) const {
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"CUPS_SERVER"_s, scheduler->socket());
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(folder.path());
    program.start(
        QStringLiteral(CORVALIS_PROGRAM),
        QStringList{u"capture"_s} + mode +
            QStringList{u"a.html"_s, u"--destination"_s, u"Printer"_s, u"-o"_s, u"unwanted/"_s});
    ASSERT_TRUE(support::waitFor([&] { return program.state() == QProcess::NotRunning; }));
    EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
    EXPECT_EQ(program.readAllStandardOutput(), QByteArray());
  }

  const std::unique_ptr<Scheduler> scheduler = Scheduler::start();
  QTemporaryDir folder;
};

TEST_F(PrintedCapture, PagesReachThePrinterInTheModeThatWasAskedFor) {
  print({u"--mode"_s, u"Vector"_s});
  print({});
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
            QStringList{u"a.html"_s});
  const QList<int> jobs = scheduler->jobs();
  ASSERT_EQ(jobs.size(), 2);
  write(u"vector.pdf"_s, scheduler->document(jobs[0]));
  write(u"picture.pdf"_s, scheduler->document(jobs[1]));
  EXPECT_EQ(picturesIn(folder.filePath(u"vector.pdf"_s)), QStringList());
  EXPECT_EQ(picturesIn(folder.filePath(u"picture.pdf"_s)).size(), 1);
}

}  // namespace
