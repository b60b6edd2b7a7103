#include <sys/xattr.h>

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

#include "delivery/CVUtils.h"
#include "platform/base/Identifier.h"
#include "platform/base/Log.h"
#include "platform/base/UserFolders.h"
#include "platform/desktop/DeliveryScripts.h"
#include "platform/desktop/ScriptRunner.h"
#include "platform/imaging/PictureConversion.h"

using namespace Qt::StringLiterals;

namespace {

QUrl childOf(const QUrl& folder, const QString& name) {
  return QUrl::fromLocalFile(folder.toLocalFile() + u'/' + name);
}

bool exists(const QUrl& file) {
  // A link that leads nowhere occupies its name too.
  const QFileInfo info(file.toLocalFile());
  return info.exists() || info.isSymLink();
}

/// Attributes that may lie in one block on ext4 together with the rest of the inode's.
constexpr qsizetype longestAttribute = 3500;

/// The address as it may be told to others who get the file: without the user's name and password.
/// One that is too long for an attribute loses its fragment and query.
QByteArray originAddress(const QString& address) {
  QUrl url(address);
  url.setUserInfo(QString());
  QByteArray text = url.toEncoded();
  if (text.size() > longestAttribute) {
    text = url.toEncoded(QUrl::RemoveFragment | QUrl::RemoveQuery);
  }
  return text.size() > longestAttribute ? QByteArray() : text;
}

QByteArray propertyList(const QByteArray& address) {
  return "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\"><plist "
         "version=\"1.0\"><array><string>" +
         QString::fromUtf8(address).toHtmlEscaped().toUtf8() + "</string></array></plist>";
}

/// The script is a fixed text into which address and path go unescaped: a page chooses its own
/// address, and one with such a character would run as a command of the shell.
bool fitsIntoScript(const QString& text) {
  return std::none_of(text.begin(), text.end(), [](QChar character) {
    return u"'\"\\"_s.contains(character) || character.category() == QChar::Other_Control;
  });
}

void setAttribute(const QString& path, const char* name, const QByteArray& value) {
  const QByteArray file = QFile::encodeName(path);
  ::setxattr(file.constData(), name, value.constData(), static_cast<std::size_t>(value.size()), 0);
}

}  // namespace

QString CVUtils::UUIDString() {
  return newUniversallyUniqueIdentifier();
}

QUrl CVUtils::getApplicationDataDirectory() const {
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  const QString folder = data + u"/com.maplebrook.corvalis"_s;
  QDir().mkpath(folder);
  return QUrl::fromLocalFile(folder);
}

QUrl CVUtils::getDownloadsDirectory() const {
  const QUrl folder = downloadsDirectory_ ? *downloadsDirectory_
                                          : childOf(getApplicationDataDirectory(), u"Downloads"_s);
  QDir().mkdir(folder.toLocalFile());
  return folder;
}

void CVUtils::setDownloadsDirectory(const QUrl& folder) {
  downloadsDirectory_ = folder;
}

void CVUtils::deleteDownloadsDirectory() const {
  QDir(getDownloadsDirectory().toLocalFile()).removeRecursively();
}

QUrl CVUtils::createTemporaryFile() const {
  const QUrl folder = getDownloadsDirectory();
  QUrl candidate;
  do {
    candidate = childOf(folder, UUIDString());
  } while (exists(candidate));
  return candidate;
}

QUrl CVUtils::createTemporaryFolder() const {
  const QUrl folder = createTemporaryFile();
  QDir().mkdir(folder.toLocalFile());
  return folder;
}

QUrl CVUtils::getUserHomeDirectory() const {
  return userHomeFolder();
}

QUrl CVUtils::getUserDesktopDirectory() const {
  return userDesktopFolder();
}

QUrl CVUtils::uncollideFile(const QUrl& file) const {
  if (!exists(file)) return file;
  const QFileInfo info(file.toLocalFile());
  const QString extension = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
  const QString base = info.fileName().chopped(extension.size());
  for (quint64 number = 2;; ++number) {
    const QString name = base + u' ' + QString::number(number) + extension;
    const QUrl candidate = childOf(QUrl::fromLocalFile(info.path()), name);
    if (!exists(candidate)) return candidate;
  }
}

QString CVUtils::trimFileName(const QString& name) {
  constexpr qsizetype longestName = 200;
  constexpr qsizetype keptAtEachEnd = 150;
  if (name.size() <= longestName) return name;
  return name.first(keptAtEachEnd) + u"..."_s + name.last(keptAtEachEnd);
}

QString CVUtils::legalFileName(const QString& name, qsizetype longestInBytes) {
  QString legal;
  for (const QChar character : name) {
    const bool control = character.category() == QChar::Other_Control;
    legal += control ? u' ' : character == u'/' ? u' ' : character;
  }
  // A name that begins with a dot is hidden, and "." and ".." are no names at all.
  if (legal.startsWith(u'.')) legal.prepend(u'_');
  while (QFile::encodeName(legal).size() > longestInBytes) {
    legal.chop(legal.back().isLowSurrogate() ? 2 : 1);
  }
  return legal.isEmpty() ? u"_"_s : legal;
}

void CVUtils::saveDataToFile(const QByteArray& data, const QUrl& file, unsigned format,
                             float compression, MaybeError& error,
                             const std::optional<QString>& address) const {
  error = imaging::convertPictureData(
      data, file.toLocalFile(), imaging::bitmapFileTypeWithCode(format), compression, {address});
}

void CVUtils::setWhereFrom(const QString& address, const QString& path) const {
  const QByteArray origin = originAddress(address);
  if (origin.isEmpty()) return;
  // Where the system has scripts, its own mark is set by one; what the desktop reads is set anyway.
  const bool hasScripts = services_.scriptRunner && services_.scriptRunner->isAvailable();
  const QString told = QUrl(address).userInfo().isEmpty() ? address : QString::fromUtf8(origin);
  if (hasScripts && fitsIntoScript(told) && fitsIntoScript(path))
    (void)runAppleScript(desktop::whereFromScript(told, path));
  setAttribute(path, "user.xdg.origin.url", origin);
  setAttribute(path, "user.com.apple.metadata:kMDItemWhereFroms", propertyList(origin));
}
