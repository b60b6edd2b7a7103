#include "platform/web/KeptProfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>

#include "platform/base/Log.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

std::optional<KeptProfile> refuse(const QString& path, const QString& reason) {
  logLine(u"Logins are not kept in this run: the folder %1 %2."_s.arg(path, reason));
  return std::nullopt;
}

/// Marks of a browser that was killed. It checks them by host name and process number, and refuses
/// its profile when the computer has been renamed since.
void removeBrowserMarks(const QString& path) {
  for (const auto& name : {u"SingletonLock"_s, u"SingletonCookie"_s, u"SingletonSocket"_s})
    QFile::remove(path + u'/' + name);
}

}  // namespace

std::optional<KeptProfile> KeptProfile::hold(const QString& path) {
  const QByteArray name = QFile::encodeName(path);
  QDir().mkpath(path);
  FileDescriptor lock(::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // An older folder may have been copied here with other rights.
  if (!lock.isOpen() || ::fchmod(lock.get(), S_IRWXU) != 0 ||
      ::access(name.constData(), W_OK | X_OK) != 0)
    return refuse(path, u"cannot be written to"_s);
  if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0)
    return refuse(path, u"is in use by another program"_s);
  removeBrowserMarks(path);
  return KeptProfile(path, std::move(lock));
}

}  // namespace web
