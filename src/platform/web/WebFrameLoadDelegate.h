#pragma once

#include <QString>

#include "platform/base/Error.h"

namespace web {

class WebFrame;
class WebView;

/// Told how the frames of a WebView load. Called on the main queue for the main frame and for
/// frames within it; `frame.isMainFrame()` tells them apart. Errors are reported for the main frame
/// only.
class WebFrameLoadDelegate {
 public:
  virtual ~WebFrameLoadDelegate() = default;

  virtual void webViewDidStartProvisionalLoadForFrame(WebView&, const WebFrame&) {}
  /// The new address is `frame.provisionalURL()`.
  virtual void webViewDidReceiveServerRedirectForProvisionalLoadForFrame(WebView&,
                                                                         const WebFrame&) {}
  virtual void webViewDidCommitLoadForFrame(WebView&, const WebFrame&) {}
  virtual void webViewDidReceiveTitleForFrame(WebView&, const QString& /*title*/, const WebFrame&) {
  }
  virtual void webViewDidFinishLoadForFrame(WebView&, const WebFrame&) {}
  virtual void webViewDidFailProvisionalLoadWithErrorForFrame(WebView&, const Error&,
                                                              const WebFrame&) {}
  /// The load failed after its document had begun to come.
  virtual void webViewDidFailLoadWithErrorForFrame(WebView&, const Error&, const WebFrame&) {}
};

}  // namespace web
