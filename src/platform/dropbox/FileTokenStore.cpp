#include "platform/dropbox/FileTokenStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "platform/base/Log.h"
#include "platform/dropbox/DropboxError.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kLongestToken = 64 * 1024;

Error storeError(const QString& path, const QString& reason) {
  return makeError(ErrorFile, u"“%1” cannot be written: %2"_s.arg(path, reason));
}

}  // namespace

std::optional<Token> FileTokenStore::read() const {
  QFile file(path_);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const auto token = Token::fromStored(file.read(kLongestToken));
  if (!token) logLine(u"“%1” holds no Dropbox token that can be read"_s.arg(path_));
  return token;
}

MaybeError FileTokenStore::write(const Token& token) const {
  QDir().mkpath(QFileInfo(path_).path());
  QSaveFile file(path_);
  if (!file.open(QIODevice::WriteOnly)) return storeError(path_, file.errorString());
  // The file was made with the rights of the user's mask, or those of the file that it replaces.
  const bool isPrivate = file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
  if (!isPrivate) return storeError(path_, file.errorString());
  file.write(token.toStored());
  if (!file.commit()) return storeError(path_, file.errorString());
  return std::nullopt;
}

MaybeError FileTokenStore::remove() const {
  QFile file(path_);
  if (!file.exists() || file.remove()) return std::nullopt;
  return storeError(path_, file.errorString());
}

}  // namespace dropbox
