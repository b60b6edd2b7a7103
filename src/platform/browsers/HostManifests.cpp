#include "platform/browsers/HostManifests.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

#include "platform/browsers/AddOn.h"
#include "platform/browsers/BrowserError.h"
#include "platform/browsers/ManifestFolders.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

QString ownFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
         u"/com.maplebrook.corvalis"_s;
}

QString starterPath() {
  return ownFolder() + u"/native-host"_s;
}

/// What the installation has made, oldest first, so that it can be taken back.
QString recordPath() {
  return ownFolder() + u"/native-host-record.json"_s;
}

QString manifestPath(const ManifestFolder& folder) {
  return folder.path + u'/' + QString::fromUtf16(hostName) + u".json"_s;
}

QStringList readRecord() {
  QFile file(recordPath());
  if (!file.open(QIODevice::ReadOnly)) return {};
  QStringList paths;
  for (const auto& path : QJsonDocument::fromJson(file.readAll()).array())
    paths << path.toString();
  return paths;
}

Error fileFailure(const QString& path, const QString& reason) {
  return browserFailure(File, u"%1: %2"_s.arg(path, reason)).value();
}

MaybeError write(const QString& path, const QByteArray& contents, QFile::Permissions permissions) {
  QDir().mkpath(QFileInfo(path).path());
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() &&
      file.setPermissions(permissions) && file.commit())
    return std::nullopt;
  return fileFailure(path, file.errorString());
}

constexpr QFile::Permissions readable =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther;
constexpr QFile::Permissions executable =
    readable | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;

/// Adds the file and the folders above it that do not exist yet, outermost first.
void addMissing(QStringList& record, const QString& path) {
  QStringList missing;
  for (QString at = path; !QFileInfo::exists(at); at = QFileInfo(at).path())
    missing.prepend(at);
  for (const QString& item : missing)
    if (!record.contains(item)) record << item;
}

QByteArray starter(const QString& program) {
  return "#!/bin/sh\nexec '" + QFile::encodeName(program).replace('\'', "'\\''") +
         "' native-host \"$@\"\n";
}

QByteArray manifest(ManifestFolder::Family family) {
  QJsonObject object{
      {u"name"_s, QString::fromUtf16(hostName)},
      {u"description"_s, u"Corvalis turns web pages into files"_s},
      {u"path"_s, starterPath()},
      {u"type"_s, u"stdio"_s},
  };
  if (family == ManifestFolder::Family::Firefox)
    object.insert(u"allowed_extensions"_s, QJsonArray{QString::fromUtf16(firefoxAddOn)});
  else
    object.insert(u"allowed_origins"_s,
                  QJsonArray{u"chrome-extension://"_s + QString::fromUtf16(chromiumAddOn) + u'/'});
  return QJsonDocument(object).toJson();
}

MaybeError writeRecord(const QList<ManifestFolder>& folders) {
  QStringList record = readRecord();
  addMissing(record, starterPath());
  for (const ManifestFolder& folder : folders)
    addMissing(record, manifestPath(folder));
  return write(recordPath(), QJsonDocument(QJsonArray::fromStringList(record)).toJson(), readable);
}

}  // namespace

MaybeError installHostManifests(const QString& program) {
  if (!QDir::isAbsolutePath(program))
    return fileFailure(program, u"the program's path must be absolute"_s);
  const auto folders = manifestFolders();
  // Recorded first: what is made without a record could not be taken back.
  if (auto error = writeRecord(folders)) return error;
  if (auto error = write(starterPath(), starter(program), executable)) return error;
  for (const ManifestFolder& folder : folders)
    if (auto error = write(manifestPath(folder), manifest(folder.family), readable)) return error;
  return std::nullopt;
}

MaybeError removeHostManifests() {
  const QStringList record = readRecord();
  QFile::remove(recordPath());
  for (auto path = record.crbegin(); path != record.crend(); ++path) {
    const QFileInfo item(*path);
    // A folder that others have put something into stays.
    if (item.isDir() && !item.isSymLink())
      QDir().rmdir(*path);
    else if (item.exists() && !QFile::remove(*path))
      return fileFailure(*path, u"it cannot be removed"_s);
  }
  return std::nullopt;
}

}  // namespace browsers
