#include "platform/desktop/RunningApplications.h"

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

/// Below the configuration folder; snaps keep it in a home of their own.
constexpr std::array profiles{
    Profile{u"google-chrome", chromePrograms},
    Profile{u"google-chrome-beta", chromePrograms},
    Profile{u"google-chrome-unstable", chromePrograms},
    Profile{u"chromium", chromiumPrograms},
    Profile{u"../snap/chromium/common/chromium", chromiumPrograms},
    Profile{u"BraveSoftware/Brave-Browser", {u"brave", u"brave-browser", u"brave"}},
    Profile{u"microsoft-edge", {u"msedge", u"microsoft-edge", u"msedge"}},
    Profile{u"vivaldi", {u"vivaldi-bin", u"vivaldi", u"vivaldi-stable"}},
};

/// The process that the profile's lock names, when it runs on this machine; 0 otherwise. The lock
/// is a link to "host-process", which a crash leaves behind.
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
  const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  const qint64 process = lockOwner(config + u'/' + QString::fromUtf16(profile.folder));
  return process > 0 && isOneOf(process, profile.programs);
}

class LinuxApplications : public RunningApplications {
 public:
  bool isRunning(const QString& bundleIdentifier) const override {
    if (bundleIdentifier != u"com.google.Chrome"_s) return false;
    return std::any_of(profiles.begin(), profiles.end(), isInUse);
  }
};

}  // namespace

std::shared_ptr<RunningApplications> RunningApplications::create() {
  return std::make_shared<LinuxApplications>();
}

}  // namespace desktop
