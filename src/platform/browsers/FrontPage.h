#pragma once

#include <QString>
#include <optional>

namespace browsers {

/// A page as the browser shows it; what could not be had is none.
struct PageTexts {
  /// The markup as the browser holds it now.
  std::optional<QString> document;
  std::optional<QString> styles;
  /// "iframe::" and an encoded document for each inline frame, in document order.
  std::optional<QString> frames;
  /// Of that very page: its user may have gone on to another tab. None where the browser cannot
  /// tell it together with the texts.
  std::optional<QString> address = std::nullopt;
};

/// The page that one of the user's browsers shows in its front window's active tab.
///
/// The operations that ask the browser block until it answers, for a bounded time, and are called
/// on any thread but the main one, which carries the conversation.
class FrontPage {
 public:
  virtual ~FrontPage() = default;

  /// Cheap; any thread.
  virtual bool isRunning() const = 0;

  virtual PageTexts capture() = 0;

  /// The source as it was loaded, where the browser can tell without access for scripts.
  virtual std::optional<QString> source() = 0;

  virtual std::optional<QString> address() = 0;

  /// Why the last capture got nothing: one sentence for the user, who can do something about it.
  /// Any thread.
  virtual std::optional<QString> unavailableReason() const = 0;
};

}  // namespace browsers
