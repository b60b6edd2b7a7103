#include "platform/desktop/BrowserProfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSysInfo>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

struct Profile {
  const char16_t* folder;
  /// What the browser's program file is called.
  std::array<const char16_t*, 3> programs;
};

constexpr std::array<const char16_t*, 3> chromePrograms{u"chrome", u"google-chrome", u"chrome"};
constexpr std::array<const char16_t*, 3> chromiumPrograms{u"chromium", u"chromium-browser",
                                                          u"chrome"};

/// Below the configuration folder; the sandboxed packages keep it in a home of their own.
constexpr std::array profiles{
    Profile{u"google-chrome", chromePrograms},
    Profile{u"google-chrome-beta", chromePrograms},
    Profile{u"google-chrome-unstable", chromePrograms},
    Profile{u"chromium", chromiumPrograms},
    Profile{u"BraveSoftware/Brave-Browser", {u"brave", u"brave-browser", u"brave"}},
    Profile{u"microsoft-edge", {u"msedge", u"microsoft-edge", u"msedge"}},
    Profile{u"vivaldi", {u"vivaldi-bin", u"vivaldi", u"vivaldi-stable"}},
    Profile{u"../snap/chromium/common/chromium", chromiumPrograms},
    Profile{u"../.var/app/org.chromium.Chromium/config/chromium", chromiumPrograms},
    Profile{u"../.var/app/com.google.Chrome/config/google-chrome", chromePrograms},
};

QString folderOf(const Profile& profile) {
  return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         u'/' + QString::fromUtf16(profile.folder));
}

/// The process that the profile's lock names, when it runs on this machine; 0 otherwise. The lock
/// is a link to "host-process", which a crash leaves behind, or, in a home on a network disk,
/// another machine.
qint64 lockOwner(const QString& profileFolder) {
  const QString target = QFile::symLinkTarget(profileFolder + u"/SingletonLock"_s);
  const QString owner = target.section(u'/', -1);
  if (owner.section(u'-', 0, -2) != QSysInfo::machineHostName()) return 0;
  return owner.section(u'-', -1).toLongLong();
}

/// The number of a crashed browser's process may be another program's by now.
bool isOneOf(qint64 process, const std::array<const char16_t*, 3>& programs) {
  const QFileInfo program(QFileInfo(u"/proc/%1/exe"_s.arg(process)).symLinkTarget());
  return std::any_of(programs.begin(), programs.end(), [&](const char16_t* name) {
    return program.fileName().remove(u" (deleted)"_s) == QString::fromUtf16(name);
  });
}

bool isInUse(const Profile& profile) {
  const qint64 process = lockOwner(folderOf(profile));
  return process > 0 && isOneOf(process, profile.programs);
}

}  // namespace

QStringList chromiumProfileFolders() {
  QStringList folders;
  for (const Profile& profile : profiles)
    folders << folderOf(profile);
  return folders;
}

QStringList chromiumProfileFoldersInUse() {
  QStringList folders;
  for (const Profile& profile : profiles)
    if (isInUse(profile)) folders << folderOf(profile);
  return folders;
}

}  // namespace desktop
