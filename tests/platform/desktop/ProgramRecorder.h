#pragma once

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

/// Stand-ins for programs, the only ones on the search path while the recorder lives. Each records
/// its arguments and standard input.
class ProgramRecorder {
 public:
  ProgramRecorder();
  ~ProgramRecorder();

  /// `commands` is shell text that runs after the recording.
  void add(const QString& program, const QByteArray& commands = "exit 0");

  /// The arguments of each run so far.
  QList<QStringList> runs(const QString& program) const;
  /// What the last run read.
  QByteArray input(const QString& program) const;

  QString path(const QString& program) const { return folder_.filePath(program); }

 private:
  QTemporaryDir folder_;
  QByteArray searchPath_;
};
