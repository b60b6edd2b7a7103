#include "capture/ResultName.h"

#include <QFileInfo>

#include "delivery/CVUtils.h"
#include "settings/CVPreferences.h"

namespace capture {

QUrl withExtensionOfFormat(const QUrl& file, const std::optional<QString>& format) {
  const auto extension = CVPreferences::getExtensionForConversionFormat(format);
  const QString path = file.toLocalFile();
  if (!extension || QFileInfo(path).suffix() == *extension) return file;
  return QUrl::fromLocalFile(path + u'.' + *extension);
}

QUrl resultInFolder(const QUrl& folder, const QString& title,
                    const std::optional<QString>& format) {
  const QUrl file =
      QUrl::fromLocalFile(folder.toLocalFile() + u'/' + CVUtils::legalFileName(title));
  return withExtensionOfFormat(file, format);
}

}  // namespace capture
