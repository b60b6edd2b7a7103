#include "platform/defaults/UserDefaults.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

#include "platform/base/Log.h"

namespace defaults {

using namespace Qt::StringLiterals;

namespace {

/// Settings are a few kilobytes; a larger file is not ours.
constexpr qint64 largestFile = 4 * 1024 * 1024;

Error fileError(int code, const QString& text, const QString& path, const QString& reason) {
  return Error{u"defaults"_s, code, text.arg(path, reason)};
}

}  // namespace

std::shared_ptr<UserDefaults> UserDefaults::standard() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return open(folder + u"/corvalis/settings.json"_s);
}

std::shared_ptr<UserDefaults> UserDefaults::open(const QString& path) {
  std::shared_ptr<UserDefaults> store(new UserDefaults(path));
  store->read();
  return store;
}

std::shared_ptr<UserDefaults> UserDefaults::inMemory() {
  return std::shared_ptr<UserDefaults>(new UserDefaults(QString()));
}

UserDefaults::UserDefaults(QString path) : path_(std::move(path)) {}

void UserDefaults::read() {
  QFile file(path_);
  if (!file.exists()) return;
  // The next save would replace what nobody has read.
  if (!file.open(QIODevice::ReadOnly)) return setAside(file.errorString());
  if (file.size() > largestFile) return setAside(u"it is too large"_s);
  QJsonParseError parseError;
  const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
  file.close();
  if (!document.isObject()) {
    const bool parsed = parseError.error == QJsonParseError::NoError;
    return setAside(parsed ? u"it holds no settings"_s : parseError.errorString());
  }
  const QJsonObject object = document.object();
  for (auto item = object.begin(); item != object.end(); ++item) {
    if (item->isString()) values_.insert(item.key(), item->toString());
  }
}

void UserDefaults::setAside(const QString& reason) {
  const QString kept = path_ + u".damaged"_s;
  QFile::remove(kept);
  QFile::rename(path_, kept);
  openingError_ = fileError(
      2,
      u"The settings in %1 cannot be read (%2); they were set aside and the defaults are in use."_s,
      path_, reason);
  logLine(openingError_->localizedDescription);
}

std::optional<QString> UserDefaults::stringForKey(const QString& key) const {
  std::lock_guard lock(mutex_);
  const auto found = values_.constFind(key);
  if (found == values_.constEnd()) return std::nullopt;
  return *found;
}

void UserDefaults::setString(const std::optional<QString>& value, const QString& key) {
  std::lock_guard lock(mutex_);
  if (value) {
    values_.insert(key, *value);
  } else {
    values_.remove(key);
  }
}

MaybeError UserDefaults::synchronize() {
  if (path_.isEmpty()) return std::nullopt;
  // The lock covers the write too: of two threads that save, the later set must win on the disk.
  std::lock_guard lock(mutex_);
  QJsonObject object;
  for (auto item = values_.cbegin(); item != values_.cend(); ++item)
    object.insert(item.key(), *item);
  const QByteArray text = QJsonDocument(object).toJson();
  QDir().mkpath(QFileInfo(path_).absolutePath());
  QSaveFile file(path_);
  if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit()) {
    return std::nullopt;
  }
  return fileError(3, u"The settings cannot be saved in %1: %2."_s, path_, file.errorString());
}

MaybeError UserDefaults::openingError() const {
  return openingError_;
}

}  // namespace defaults
