#pragma once

#include <QString>
#include <memory>

namespace desktop {

/// The programs that the user is running.
class RunningApplications {
 public:
  virtual ~RunningApplications() = default;

  /// By bundle identifier, compared exactly. Any thread.
  virtual bool isRunning(const QString& bundleIdentifier) const = 0;

  /// Knows "com.google.Chrome": Chrome or another browser of its family (Chromium, Brave, Edge,
  /// Vivaldi) running on one of the user's own profiles. A browser on another profile folder, such
  /// as the page engine, does not count. Every other program is taken as not running.
  static std::shared_ptr<RunningApplications> create();
};

}  // namespace desktop
