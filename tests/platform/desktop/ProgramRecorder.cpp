#include "ProgramRecorder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

ProgramRecorder::ProgramRecorder() : searchPath_(qgetenv("PATH")) {
  qputenv("PATH", folder_.path().toLocal8Bit());
}

ProgramRecorder::~ProgramRecorder() {
  qputenv("PATH", searchPath_);
}

void ProgramRecorder::add(const QString& program, const QByteArray& commands) {
  QFile script(path(program));
  ASSERT_TRUE(script.open(QIODevice::WriteOnly));
  script.write(
      "#!/bin/sh\n/bin/cat > \"$0.input\"\nprintf '%s\\0' \"$@\" > \"$0.$$.part\"\n"
      "/bin/mv \"$0.$$.part\" \"$0.$$.run\"\n" +
      commands + '\n');
  script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QList<QStringList> ProgramRecorder::runs(const QString& program) const {
  QList<QStringList> runs;
  const QStringList files = QDir(folder_.path()).entryList({program + u".*.run"_s});
  for (const QString& name : files) {
    QFile file(folder_.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray text = file.readAll();
    if (text.endsWith('\0')) text.chop(1);
    QStringList arguments;
    for (const QByteArray& argument : text.split('\0'))
      arguments << QFile::decodeName(argument);
    runs << arguments;
  }
  return runs;
}

QByteArray ProgramRecorder::input(const QString& program) const {
  QFile file(path(program) + u".input"_s);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
