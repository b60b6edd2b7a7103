#pragma once

#include <QVariantMap>
#include <chrono>
#include <functional>

#include "platform/base/Error.h"

namespace desktop {

/// A method of the desktop portal that answers through a request object
/// (org.freedesktop.portal.Request).
struct PortalCall {
  /// For instance "org.freedesktop.portal.Email".
  QString interface;
  QString method;
  /// What stands before the options.
  QVariantList arguments;
  /// Without the handle token, which is added.
  QVariantMap options;
};

/// Makes the call and waits for the request's response. `completion` comes once, on the main
/// thread: the response's results, or an error: DesktopErrorUnavailable when no portal took the
/// call, DesktopErrorCancelled when the user cancelled, DesktopErrorProgramFailed when the portal
/// reported a failure, DesktopErrorNoAnswer after `limit` (the request is then closed). Main thread
/// only.
void callPortal(const PortalCall& call, std::chrono::milliseconds limit,
                std::function<void(Result<QVariantMap>)> completion);

}  // namespace desktop
