#include "platform/desktop/internal/SoundFiles.h"

#include <QFile>
#include <QHash>
#include <QStandardPaths>

#include "platform/desktop/SoundPlayer.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

QString themeFile(const QString& name) {
  for (const QString& extension : {u".oga"_s, u".ogg"_s, u".wav"_s}) {
    const QString file = u"sounds/freedesktop/stereo/"_s + name + extension;
    const QString path = QStandardPaths::locate(QStandardPaths::GenericDataLocation, file);
    if (!path.isEmpty()) return path;
  }
  return {};
}

}  // namespace

QString soundThemeName(const QString& sound) {
  static const QHash<QString, QString> names{
      {QString::fromUtf16(emptyTrashSound), u"trash-empty"_s},
      {QString::fromUtf16(defaultNotificationSound), u"message-new-instant"_s},
      {u"Basso"_s, u"dialog-error"_s},
  };
  return names.value(sound);
}

QUrl soundSource(const QString& sound) {
  if (sound == u"click.aiff"_s) return QUrl(u"qrc:/corvalis/sounds/click.wav"_s);
  const QString name = soundThemeName(sound);
  const QString path = name.isEmpty() ? QString() : themeFile(name);
  return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
}

}  // namespace desktop
