#include "ProcessTree.h"

#include <QDir>
#include <QFile>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The fields of /proc/PID/stat behind the name of the program (proc(5)), of which the first is the
/// state, the second the parent and the twentieth the time of the start. Empty for none.
QByteArrayList statusOf(qint64 process) {
  QFile file(u"/proc/%1/stat"_s.arg(process));
  if (!file.open(QIODevice::ReadOnly)) return {};
  const QByteArray text = file.readAll();
  return text.mid(text.lastIndexOf(')') + 2).split(' ');
}

constexpr int stateField = 0;
constexpr int parentField = 1;
constexpr int startField = 19;

}  // namespace

ProcessTree::ProcessTree(qint64 root) : processes_{{root, statusOf(root).value(startField)}} {
  const QStringList names = QDir(u"/proc"_s).entryList(QDir::Dirs);
  for (qsizetype parent = 0; parent < processes_.size(); ++parent) {
    for (const QString& name : names) {
      const qint64 process = name.toLongLong();
      const QByteArrayList status = process > 0 ? statusOf(process) : QByteArrayList();
      if (status.value(parentField).toLongLong() == processes_[parent].identifier && process > 0)
        processes_ << Process{process, status.value(startField)};
    }
  }
}

qint64 ProcessTree::find(const QByteArray& text) const {
  for (const Process& process : processes_) {
    QFile commandLine(u"/proc/%1/cmdline"_s.arg(process.identifier));
    if (commandLine.open(QIODevice::ReadOnly) && commandLine.readAll().contains(text))
      return process.identifier;
  }
  return 0;
}

bool ProcessTree::hasEnded() const {
  return std::all_of(processes_.begin(), processes_.end(), [](const Process& process) {
    const QByteArrayList status = statusOf(process.identifier);
    return status.isEmpty() || status[stateField] == "Z" ||
           status.value(startField) != process.startTime;
  });
}
