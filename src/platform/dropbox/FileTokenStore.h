#pragma once

#include <QString>
#include <optional>

#include "platform/base/Error.h"
#include "platform/dropbox/Token.h"

namespace dropbox {

/// A token in a file that only its owner can read (mode 0600, from before its first byte).
class FileTokenStore {
 public:
  explicit FileTokenStore(QString path) : path_(std::move(path)) {}

  const QString& path() const { return path_; }
  std::optional<Token> read() const;
  MaybeError write(const Token& token) const;
  MaybeError remove() const;

 private:
  QString path_;
};

}  // namespace dropbox
