#pragma once

#include <QString>
#include <memory>

#include "platform/base/Error.h"

namespace desktop {

/// The desktop's clipboard. Its contents live in this program: without a clipboard manager they go
/// when it ends, and a file on it must stay where it is.
class FileClipboard {
 public:
  virtual ~FileClipboard() = default;

  /// Puts the file itself on the clipboard, for file managers (paste as a copy), for programs that
  /// take files, and, when it is a picture, for programs that take pictures. Any thread; returns
  /// when it is there.
  virtual MaybeError setFile(const QString& path) = 0;

  /// Replaces the contents by plain text. Any thread; returns when it is there.
  virtual MaybeError setText(const QString& text) = 0;

  /// The window system's clipboard. Without windows (a command-line run) its operations fail.
  static std::shared_ptr<FileClipboard> create();
};

}  // namespace desktop
