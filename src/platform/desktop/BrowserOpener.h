#pragma once

#include <QUrl>
#include <functional>
#include <memory>

#include "platform/base/Error.h"

namespace desktop {

/// The user's default browser.
class BrowserOpener {
 public:
  using Completion = std::function<void(MaybeError)>;

  virtual ~BrowserOpener() = default;

  /// Opens a web address (http or https; any other is refused). `completion` (may be empty) comes
  /// once, on the main thread; failures are also logged. Any thread.
  virtual void open(const QUrl& address, Completion completion = {}) = 0;

  /// By `xdg-open`.
  static std::shared_ptr<BrowserOpener> create();
};

}  // namespace desktop
