#include "platform/browsers/ManifestFolders.h"

#include <QDir>
#include <QStandardPaths>
#include <algorithm>

#include "platform/desktop/BrowserProfiles.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

/// Where Firefox keeps its profiles: the old place, the one of its newer releases, and those of the
/// sandboxed packages.
bool hasFirefox() {
  const QString home = QDir::homePath();
  const QStringList folders{
      home + u"/.mozilla"_s,
      QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/mozilla"_s,
      home + u"/snap/firefox"_s, home + u"/.var/app/org.mozilla.firefox"_s};
  return std::any_of(folders.begin(), folders.end(),
                     [](const QString& folder) { return QDir(folder).exists(); });
}

}  // namespace

QList<ManifestFolder> manifestFolders() {
  QList<ManifestFolder> folders;
  // Every Firefox reads the old place, wherever its profile is.
  if (hasFirefox())
    folders.append({ManifestFolder::Family::Firefox,
                    QDir::homePath() + u"/.mozilla/native-messaging-hosts"_s});
  for (const QString& folder : desktop::chromiumProfileFolders())
    if (QDir(folder).exists())
      folders.append({ManifestFolder::Family::Chromium, folder + u"/NativeMessagingHosts"_s});
  return folders;
}

}  // namespace browsers
