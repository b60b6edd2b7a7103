#pragma once

#include <memory>
#include <optional>

#include "platform/desktop/MailComposer.h"

namespace desktop {

/// One way to a mail program. Main thread only.
class MailRoute {
 public:
  virtual ~MailRoute() = default;

  /// False: this way is not there, and `completion` will not be called.
  virtual bool tryMessage(const QString& attachmentPath, MailComposer::Completion completion) = 0;
};

/// Thunderbird's own command line, when it is the user's mail program and not in a sandbox that
/// could not read the file: it drops an attachment that comes by a mailto address.
std::unique_ptr<MailRoute> thunderbirdRoute(std::chrono::milliseconds patience);

/// The desktop portal. An absent portal ends the message with DesktopErrorUnavailable.
std::unique_ptr<MailRoute> portalRoute(std::chrono::milliseconds limit);

/// The script xdg-email, which knows the desktops' own ways.
std::unique_ptr<MailRoute> xdgEmailRoute(std::chrono::milliseconds patience);

}  // namespace desktop
