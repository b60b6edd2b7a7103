#include "platform/base/UserFolders.h"

#include <QDir>
#include <QStandardPaths>

QUrl userHomeFolder() {
  return QUrl::fromLocalFile(QDir::homePath());
}

QUrl userDesktopFolder() {
  return QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DesktopLocation));
}
