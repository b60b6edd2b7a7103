#pragma once

#include <functional>

#include "platform/base/Error.h"
#include "platform/web/PageObserver.h"

namespace web {

class WKWebView;

enum class WKNavigationPolicy { Cancel, Allow };
/// Called once, from within the delegate's operation or later.
using WKPolicyHandler = std::function<void(WKNavigationPolicy)>;

/// Told how a WKWebView navigates, always for the main frame, on the main queue.
class WKNavigationDelegate {
 public:
  virtual ~WKNavigationDelegate() = default;

  virtual void webViewDidFinishNavigation(WKWebView&) {}
  /// Failures before and after the commit alike.
  virtual void webViewDidFailNavigationWithError(WKWebView&, const Error&) {}
  /// Asked for each load that the view is given, before the page starts it.
  virtual void webViewDecidePolicyForNavigationAction(WKWebView&, const QUrl&,
                                                      const WKPolicyHandler& decisionHandler) {
    decisionHandler(WKNavigationPolicy::Allow);
  }
  /// Asked when the main request is answered. The document goes on loading meanwhile; Cancel stops
  /// it.
  virtual void webViewDecidePolicyForNavigationResponse(WKWebView&, const Response&,
                                                        const WKPolicyHandler& decisionHandler) {
    decisionHandler(WKNavigationPolicy::Allow);
  }
};

}  // namespace web
