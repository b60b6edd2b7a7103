#pragma once

#include <QString>
#include <memory>

namespace desktop {

/// Plays the program's short sounds.
class SoundPlayer {
 public:
  virtual ~SoundPlayer() = default;

  /// Plays a sound by its name or file: "click.aiff" (bundled), "Basso",
  /// `defaultNotificationSound`, or the path of the sound of an emptied trash. Returns at once; a
  /// name that is not known or a sound that cannot be loaded plays nothing. Any thread.
  virtual void play(const QString& name) = 0;

  /// Bundled sounds, and those of the desktop's sound theme (freedesktop "Sound Theme
  /// Specification").
  static std::shared_ptr<SoundPlayer> create();
};

/// The file of the sound that goes with removing something, as macOS has it.
inline constexpr char16_t emptyTrashSound[] =
    u"/System/Library/Components/CoreAudio.component/Contents/SharedSupport/SystemSounds/finder/"
    u"empty trash.aif";

/// Stands for the sound that the desktop gives a notification.
inline constexpr char16_t defaultNotificationSound[] = u"NSUserNotificationDefaultSoundName";

}  // namespace desktop
