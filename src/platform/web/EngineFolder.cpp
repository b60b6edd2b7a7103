#include "platform/web/EngineFolder.h"

#include <fcntl.h>
#include <sys/file.h>

#include <QDir>
#include <QTemporaryDir>
#include <chrono>
#include <thread>

#include "platform/base/Log.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr int removalAttempts = 100;
constexpr std::chrono::milliseconds removalPause{10};

QString prefix() {
  return u"corvalis-engine-"_s;
}

/// The lock of a folder; not open when another program holds it.
FileDescriptor lockFolder(const QString& path) {
  FileDescriptor lock(::open(path.toLocal8Bit().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (lock.isOpen() && ::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) lock.reset();
  return lock;
}

void removeAbandonedFolders() {
  const QDir temporary = QDir::temp();
  const QFileInfoList folders =
      temporary.entryInfoList({prefix() + u'*'}, QDir::Dirs | QDir::NoSymLinks | QDir::Hidden);
  for (const QFileInfo& folder : folders) {
    if (!folder.isWritable() || folder.ownerId() != ::geteuid()) continue;
    // One that is young may not have been locked yet.
    if (folder.lastModified().secsTo(QDateTime::currentDateTime()) < 10) continue;
    if (lockFolder(folder.filePath()).isOpen()) QDir(folder.filePath()).removeRecursively();
  }
}

}  // namespace

Result<EngineFolder> EngineFolder::create() {
  removeAbandonedFolders();
  QTemporaryDir folder(QDir::temp().filePath(prefix() + u"XXXXXX"_s));
  folder.setAutoRemove(false);
  FileDescriptor lock = folder.isValid() ? lockFolder(folder.path()) : FileDescriptor();
  const QDir made(folder.path());
  if (!lock.isOpen() || !made.mkdir(u"profile"_s) || !made.mkdir(u"tmp"_s))
    return tl::make_unexpected(makeError(
        EngineNotStarted, u"The browser's folder cannot be made in %1."_s.arg(QDir::tempPath())));
  return EngineFolder(folder.path(), std::move(lock));
}

void EngineFolder::remove() {
  if (path_.isEmpty()) return;
  for (int attempt = 0; attempt < removalAttempts; ++attempt) {
    QDir(path_).removeRecursively();
    if (!QFileInfo::exists(path_)) return;
    std::this_thread::sleep_for(removalPause);
  }
  logLine(u"The browser's folder %1 could not be removed."_s.arg(path_));
}

}  // namespace web
