#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/web/Page.h"

namespace web {

struct Script {
  QString text;
  /// Where it runs; none: in the main frame's own world.
  std::optional<int> context;
};

/// Runs a script and awaits its promise.
void evaluateScript(Session& session, const Script& script, ValueCallback callback,
                    std::chrono::milliseconds timeout);

/// Runs a script in every frame of the sessions, the first session's main frame first. The callback
/// comes once, when every frame has answered or failed.
void evaluateScriptInFrames(const std::vector<std::shared_ptr<Session>>& sessions,
                            const QString& script, FrameValuesCallback callback,
                            std::chrono::milliseconds timeout);

}  // namespace web
