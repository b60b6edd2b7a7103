#pragma once

#include <QString>
#include <chrono>
#include <memory>

#include "platform/base/Error.h"

namespace desktop {

/// Runs script texts in the system's scripting language (AppleScript).
class ScriptRunner {
 public:
  virtual ~ScriptRunner() = default;

  /// Whether the machine has a script system at all.
  virtual bool isAvailable() const = 0;

  /// The result's text without the line feed that ends it, or why there is none. Any thread; blocks
  /// until the script has ended, at most the runner's limit.
  virtual Result<QString> run(const QString& script) const = 0;

  /// Runs scripts by `osascript`, looked up on PATH at every call; the text goes to its standard
  /// input, so it is neither quoted nor limited in length. A script that runs longer than `limit`
  /// is killed.
  static std::shared_ptr<ScriptRunner> create(
      std::chrono::milliseconds limit = std::chrono::minutes(2));
};

}  // namespace desktop
