#include "platform/desktop/internal/MimeApplications.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include "platform/desktop/internal/Launch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// Association lists and desktop entries are small; a larger file is none of them.
constexpr qint64 longestFile = 4 * 1024 * 1024;

/// A key's value in a section of a desktop-style file; none of the escapes matter for identifiers.
QString valueOf(const QString& path, const QString& section, const QString& key) {
  QFile file(path);
  if (file.size() > longestFile || !file.open(QIODevice::ReadOnly)) return {};
  bool inSection = false;
  const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
  for (const QString& raw : lines) {
    const QString line = raw.trimmed();
    if (line.startsWith(u'[')) {
      inSection = line == u'[' + section + u']';
    } else if (inSection && line.section(u'=', 0, 0).trimmed() == key) {
      return line.section(u'=', 1).trimmed();
    }
  }
  return {};
}

QStringList listNames() {
  QStringList names;
  const QStringList desktops =
      qEnvironmentVariable("XDG_CURRENT_DESKTOP").toLower().split(u':', Qt::SkipEmptyParts);
  for (const QString& desktop : desktops)
    names << desktop + u"-mimeapps.list"_s;
  return names << u"mimeapps.list"_s;
}

QStringList associationLists() {
  QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
  folders << QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
  QStringList lists;
  for (const QString& folder : folders)
    for (const QString& name : listNames())
      lists << folder + u'/' + name;
  return lists;
}

QStringList cacheFiles() {
  return QStandardPaths::locateAll(QStandardPaths::ApplicationsLocation, u"mimeinfo.cache"_s);
}

/// The first of the programs that is installed.
DesktopEntry firstInstalled(const QStringList& files, const QString& section, const QString& key) {
  for (const QString& file : files) {
    const QStringList identifiers = valueOf(file, section, key).split(u';', Qt::SkipEmptyParts);
    for (const QString& identifier : identifiers) {
      const QString path = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, identifier);
      if (!path.isEmpty()) return {identifier, path};
    }
  }
  return {};
}

QStringList execWords(const DesktopEntry& entry) {
  return QProcess::splitCommand(valueOf(entry.path, u"Desktop Entry"_s, u"Exec"_s));
}

}  // namespace

DesktopEntry defaultApplication(const QString& mimeType) {
  auto entry = firstInstalled(associationLists(), u"Default Applications"_s, mimeType);
  if (entry.identifier.isEmpty())
    entry = firstInstalled(associationLists(), u"Added Associations"_s, mimeType);
  if (entry.identifier.isEmpty()) entry = firstInstalled(cacheFiles(), u"MIME Cache"_s, mimeType);
  return entry;
}

QString programOf(const DesktopEntry& entry) {
  return execWords(entry).value(0);
}

QStringList openCommand(const DesktopEntry& entry, const QString& path) {
  QStringList command;
  bool takesFiles = false;
  const QStringList words = execWords(entry);
  for (const QString& word : words) {
    const bool isPath = word == u"%f"_s || word == u"%F"_s;
    const bool isAddress = word == u"%u"_s || word == u"%U"_s;
    takesFiles |= isPath || isAddress;
    if (isPath) command << path;
    if (isAddress) command << QString::fromLatin1(fileAddress(path));
    // The other codes stand for an icon, a name or the entry itself, which no program needs.
    if (word.size() != 2 || word[0] != u'%') command << QString(word).replace(u"%%"_s, u"%"_s);
  }
  return takesFiles ? command : QStringList();
}

}  // namespace desktop
