#pragma once

#include <QUrl>
#include <functional>

/// How the linking of an account ended.
enum class CVRedirectOutcome { Success, Cancel, Error };

/// Completes the linking of an account: the browser comes back by an address of the account
/// library's own scheme. Main thread.
class CVRedirectHandler {
 public:
  using Completion = std::function<void(CVRedirectOutcome outcome)>;

  virtual ~CVRedirectHandler() = default;

  /// Makes the account library ready. Called once, before the first address is offered.
  virtual void setupDropBox() = 0;

  /// Tells whether the address is the library's. If it is, `completion` comes once, on the main
  /// thread; if it is not, nothing is done.
  virtual bool handleRedirectURL(const QUrl& url, Completion completion) = 0;
};
