#include "platform/desktop/Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include "platform/desktop/internal/Launch.h"

using namespace Qt::StringLiterals;

namespace desktop {

Result<QString> moveToTrash(const QString& path) {
  // Without its data folder Qt 6.4 moves the file to a trash in the working directory.
  QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
  QFile file(QFileInfo(path).absoluteFilePath());
  if (file.moveToTrash()) return file.fileName();
  return tl::unexpected<Error>(desktopError(
      DesktopErrorFile, u"%1 cannot be moved to the trash: %2"_s.arg(path, file.errorString())));
}

}  // namespace desktop
