#pragma once

#include <QString>
#include <memory>

#include "platform/desktop/FileManager.h"
#include "platform/desktop/SoundPlayer.h"

namespace desktop {

/// A message that the desktop shows beside the windows. All texts are plain.
struct Notification {
  enum class Kind { Information, Failure };

  Kind kind = Kind::Information;
  QString title;
  QString informativeText;
  /// A name that `SoundPlayer` knows; empty: silent.
  QString soundName;
  /// The file that a click on the notification shows in the file manager; empty: a click does
  /// nothing.
  QString filePath;
};

/// The desktop's notification centre.
class Notifications {
 public:
  virtual ~Notifications() = default;

  /// Returns at once. A desktop without notifications shows nothing; a line is logged. Any thread.
  virtual void deliver(const Notification& notification) = 0;

  /// Over the session bus (freedesktop "Desktop Notifications Specification"). Where the server
  /// plays no sounds, `sounds` does. Main thread.
  static std::shared_ptr<Notifications> create(std::shared_ptr<FileManager> fileManager,
                                               std::shared_ptr<SoundPlayer> sounds);
};

}  // namespace desktop
