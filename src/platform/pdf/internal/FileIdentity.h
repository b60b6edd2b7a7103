#pragma once

#include <sys/stat.h>

#include <QFile>
#include <QString>

namespace pdf {

/// A file that may be replaced by another of its name, or changed.
class FileIdentity {
 public:
  FileIdentity() = default;
  explicit FileIdentity(const QString& path) : path_(path), known_(look(state_)) {}

  const QString& path() const { return path_; }

  /// Whether it still lies at its path as it was.
  bool isThere() const {
    struct stat now {};
    return known_ && look(now) && now.st_dev == state_.st_dev && now.st_ino == state_.st_ino &&
           now.st_size == state_.st_size && now.st_mtim.tv_sec == state_.st_mtim.tv_sec &&
           now.st_mtim.tv_nsec == state_.st_mtim.tv_nsec;
  }

 private:
  bool look(struct stat& state) const {
    return ::stat(QFile::encodeName(path_).constData(), &state) == 0;
  }

  QString path_;
  struct stat state_ {};
  bool known_ = false;
};

}  // namespace pdf
