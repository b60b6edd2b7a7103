#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <chrono>
#include <optional>

#include "platform/base/Error.h"

namespace browsers {

/// Where a running browser can be reached by the DevTools protocol: always on this machine.
struct DevToolsEndpoint {
  quint16 port = 0;
  /// Of the browser's own target, for instance "/devtools/browser/<identifier>".
  QString path;

  QUrl address() const;

  friend bool operator==(const DevToolsEndpoint&, const DevToolsEndpoint&) = default;
};

/// From the file DevToolsActivePort of the profile folder (first line the port, second the path);
/// none when there is no such file or it is damaged. A browser that has ended may have left it.
std::optional<DevToolsEndpoint> readEndpoint(const QString& profileFolder);

/// The identifiers of the browser's targets, the one used last first, from its HTTP door. Browsers
/// that were opened by the switch in chrome://inspect have none: an error. Blocks; any thread.
Result<QStringList> targetsByUse(const DevToolsEndpoint& endpoint, std::chrono::milliseconds limit);

}  // namespace browsers
