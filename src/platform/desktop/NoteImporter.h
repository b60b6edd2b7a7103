#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/desktop/FileManager.h"

namespace desktop {

/// The user's note program.
class NoteImporter {
 public:
  using Completion = std::function<void(MaybeError)>;

  virtual ~NoteImporter() = default;

  /// Makes a note with the title both as its title and as its text, and the file attached. The note
  /// file is written to `folder` (which must exist) by the calling thread, and stays there: the
  /// note program reads it later. `completion` (may be empty) comes once, on the main thread:
  /// without an error when a program was given the note or, for want of one, the user was shown the
  /// note file. Any thread.
  virtual void importFile(const QString& path, const QString& title, const QString& folder,
                          Completion completion) = 0;

  /// Writes an ENEX file and opens it with the program registered for its type; where none is, the
  /// file is shown in the file manager. A program that still runs after `launcherLimit` has taken
  /// the note.
  static std::shared_ptr<NoteImporter> create(
      std::shared_ptr<FileManager> fileManager,
      std::chrono::milliseconds launcherLimit = std::chrono::seconds(3));
};

}  // namespace desktop
