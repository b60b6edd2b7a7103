#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "platform/base/Error.h"

namespace desktop {

/// The user's mail program.
class MailComposer {
 public:
  using Completion = std::function<void(MaybeError)>;

  virtual ~MailComposer() = default;

  /// Opens a new message for the user to complete, with the file as its only attachment: no
  /// recipient, subject or text. The mail program may read the file long after it has taken the
  /// message over, so the file must stay. `completion` (may be empty) comes once, on the main
  /// thread, when a program has taken the message over or none could. Any thread.
  virtual void newMessage(const QString& attachmentPath, Completion completion) = 0;

  struct Limits {
    /// How long the portal may ask the user for a program before the message counts as not taken.
    std::chrono::milliseconds portal = std::chrono::minutes(2);
    /// A mail program or launcher that still runs after this time has taken the message.
    std::chrono::milliseconds launcher = std::chrono::seconds(5);
  };

  /// Thunderbird directly when it is the user's mail program, else the desktop portal
  /// (org.freedesktop.portal.Email), else `xdg-email`.
  static std::shared_ptr<MailComposer> create(Limits limits);
  static std::shared_ptr<MailComposer> create() { return create(Limits()); }
};

}  // namespace desktop
