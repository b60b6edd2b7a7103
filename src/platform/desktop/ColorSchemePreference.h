#pragma once

#include <functional>
#include <memory>

namespace desktop {

enum class ColorScheme { NoPreference, Dark, Light };
enum class Motion { Full, Reduced };

/// What the user has chosen for the looks of all programs. Main thread only.
class ColorSchemePreference {
 public:
  virtual ~ColorSchemePreference() = default;

  /// As far as the desktop has told; before that, and where it never does, no preference.
  virtual ColorScheme colorScheme() const = 0;

  /// `Full` until the desktop has told otherwise.
  virtual Motion motion() const = 0;

  /// Called after each change of either value, the one from the default to what the desktop tells
  /// first included. One observer.
  virtual void setObserver(std::function<void()> changed) = 0;

  /// From the desktop portal (org.freedesktop.portal.Settings, namespace
  /// org.freedesktop.appearance; motion also from the GNOME interface setting that switches
  /// animations off).
  static std::shared_ptr<ColorSchemePreference> create();
};

}  // namespace desktop
