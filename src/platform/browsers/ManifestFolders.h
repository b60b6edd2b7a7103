#pragma once

#include <QList>
#include <QString>

namespace browsers {

/// A browser's folder for native-messaging manifests.
struct ManifestFolder {
  enum class Family { Chromium, Firefox };
  Family family = Family::Chromium;
  QString path;
};

/// One for each browser that this user has ever started (its own folder exists). The folder itself
/// may be missing.
QList<ManifestFolder> manifestFolders();

}  // namespace browsers
