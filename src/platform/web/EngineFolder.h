#pragma once

#include <QString>

#include "platform/base/Error.h"
#include "platform/web/FileDescriptor.h"

namespace web {

/// The private folder of one browser process: its profile and its temporary files. Held by a lock,
/// so that folders of programs that were killed can be told from those in use.
class EngineFolder {
 public:
  /// Makes a folder in the system's temporary folder, and removes those that nobody holds any more.
  static Result<EngineFolder> create();

  QString path() const { return path_; }
  QString profilePath() const { return path_ + QStringLiteral("/profile"); }
  QString temporaryPath() const { return path_ + QStringLiteral("/tmp"); }

  /// Removes the folder. Processes that were just killed may still be writing: tries again for a
  /// second at most. Any thread.
  void remove();

 private:
  EngineFolder(QString path, FileDescriptor lock)
      : path_(std::move(path)), lock_(std::move(lock)) {}

  QString path_;
  FileDescriptor lock_;
};

}  // namespace web
