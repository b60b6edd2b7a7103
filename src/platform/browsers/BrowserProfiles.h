#pragma once

#include <QString>
#include <QStringList>
#include <optional>

/// Where the browsers that we know keep what concerns us, for this user.
namespace browsers {

/// The profile folders of Chrome and its family that a running browser of this machine holds, in
/// a fixed order. Read anew at each call. Any thread.
QStringList profileFoldersInUse();

/// A browser's folder for native-messaging manifests.
struct ManifestFolder {
  enum class Family { Chromium, Firefox };
  Family family = Family::Chromium;
  QString path;
};

/// One for each browser that the user has ever started (its own folder exists).
QList<ManifestFolder> manifestFolders();

}  // namespace browsers
