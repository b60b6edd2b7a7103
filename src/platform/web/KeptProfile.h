#pragma once

#include <QString>
#include <optional>

#include "platform/web/FileDescriptor.h"

namespace web {

/// A browser profile that outlives its browser: cookies, logins and what sites have stored. One
/// holder at a time; the hold is the system's own lock on the folder, so it ends with the process
/// that has it, however that ends.
class KeptProfile {
 public:
  /// Makes the folder, readable by its user alone, if it is missing. None, with a line in the log,
  /// when another program holds it or nothing can be written there.
  static std::optional<KeptProfile> hold(const QString& path);

  const QString& path() const { return path_; }

 private:
  KeptProfile(QString path, FileDescriptor lock) : path_(std::move(path)), lock_(std::move(lock)) {}

  QString path_;
  FileDescriptor lock_;
};

}  // namespace web
