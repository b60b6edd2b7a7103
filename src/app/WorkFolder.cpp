#include "app/WorkFolder.h"

#include <signal.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QStandardPaths>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

QString parentFolder() {
  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  const QString folder = cache + u"/corvalis/work"_s;
  QDir().mkpath(folder);
  return folder;
}

constexpr qint64 daysKept = 2;

QString markerIn(const QString& folder) {
  return folder + u"/.kept"_s;
}

bool isStillKept(const QString& folder) {
  const QFileInfo marker(markerIn(folder));
  return marker.exists() && marker.lastModified().daysTo(QDateTime::currentDateTime()) < daysKept;
}

bool isAlive(qint64 process) {
  return ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
}

/// Names begin with the number of the process that made them.
void removeFoldersOfEndedProcesses(const QString& parent) {
  for (const QFileInfo& folder : QDir(parent).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    const qint64 process = folder.fileName().section(u'-', 0, 0).toLongLong();
    const bool inUse = isAlive(process) || isStillKept(folder.filePath());
    if (process > 0 && !inUse) QDir(folder.filePath()).removeRecursively();
  }
}

QString newFolderPattern() {
  const QString parent = parentFolder();
  removeFoldersOfEndedProcesses(parent);
  return u"%1/%2-XXXXXX"_s.arg(parent).arg(QCoreApplication::applicationPid());
}

}  // namespace

WorkFolder::WorkFolder() : folder_(newFolderPattern()) {}

void WorkFolder::keep() {
  folder_.setAutoRemove(false);
  QFile marker(markerIn(folder_.path()));
  marker.open(QIODevice::WriteOnly);
}
