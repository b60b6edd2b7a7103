#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "platform/base/Error.h"

namespace desktop {

/// The desktop's file manager.
class FileManager {
 public:
  using Completion = std::function<void(MaybeError)>;

  virtual ~FileManager() = default;

  /// Opens the file's folder with the file selected; where no file manager can select, just the
  /// folder. `completion` (may be empty) comes once, on the main thread; failures are also logged.
  /// Any thread.
  virtual void reveal(const QString& path, Completion completion = {}) = 0;

  /// Over the session bus (freedesktop "File manager D-Bus interface",
  /// org.freedesktop.FileManager1), else by `xdg-open`.
  static std::shared_ptr<FileManager> create();
};

}  // namespace desktop
