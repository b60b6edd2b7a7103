#include "platform/browsers/BrowserProfiles.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QSysInfo>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

/// Below the configuration folder; the sandboxed packages keep it in a home of their own.
constexpr std::array<const char16_t*, 10> chromiumFolders{
    u"google-chrome",
    u"google-chrome-beta",
    u"google-chrome-unstable",
    u"chromium",
    u"BraveSoftware/Brave-Browser",
    u"microsoft-edge",
    u"vivaldi",
    u"../snap/chromium/common/chromium",
    u"../.var/app/org.chromium.Chromium/config/chromium",
    u"../.var/app/com.google.Chrome/config/google-chrome",
};

QString inConfig(const char16_t* folder) {
  return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         u'/' + QString::fromUtf16(folder));
}

/// The lock is a link to "host-process"; one that a crash left behind names no process any more,
/// or, in a home on a network disk, another machine.
bool isInUse(const QString& profileFolder) {
  const QString owner = QFile::symLinkTarget(profileFolder + u"/SingletonLock"_s).section(u'/', -1);
  bool isNumber = false;
  const qint64 process = owner.section(u'-', -1).toLongLong(&isNumber);
  return isNumber && process > 0 && owner.section(u'-', 0, -2) == QSysInfo::machineHostName() &&
         QFile::exists(u"/proc/%1"_s.arg(process));
}

ManifestFolder firefoxFolder() {
  return {ManifestFolder::Family::Firefox,
          QDir::homePath() + u"/.mozilla/native-messaging-hosts"_s};
}

}  // namespace

QStringList profileFoldersInUse() {
  QStringList folders;
  for (const char16_t* folder : chromiumFolders)
    if (isInUse(inConfig(folder))) folders << inConfig(folder);
  return folders;
}

QList<ManifestFolder> manifestFolders() {
  QList<ManifestFolder> folders{firefoxFolder()};
  for (const char16_t* folder : chromiumFolders)
    folders.append(
        {ManifestFolder::Family::Chromium, inConfig(folder) + u"/NativeMessagingHosts"_s});
  folders.removeIf([](const ManifestFolder& folder) {
    return !QDir(QDir::cleanPath(folder.path + u"/.."_s)).exists();
  });
  return folders;
}

}  // namespace browsers
