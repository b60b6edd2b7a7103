#pragma once

#include "platform/web/PageConfiguration.h"
#include "platform/web/PageObserver.h"

namespace web {

class WebView;

/// A frame of a WebView, as its delegates see it. Lives as long as the call it is passed to; the
/// main frame lives as long as its view.
class WebFrame {
 public:
  WebFrame(WebView& view, Frame frame) : view_(view), frame_(std::move(frame)) {}

  bool isMainFrame() const { return frame_.isMain(); }
  /// Address of the document that the frame shows.
  QUrl url() const { return frame_.url; }
  /// Address that is asked for: the request's, then that of each redirect.
  QUrl provisionalURL() const { return provisionalURL_.isEmpty() ? frame_.url : provisionalURL_; }

  /// Loads into the view. Main frame only: other frames are their page's business.
  void loadRequest(const PageRequest& request) const;
  void loadHTMLString(const QString& html, const QUrl& baseURL) const;

 private:
  friend class WebView;

  WebView& view_;
  Frame frame_;
  QUrl provisionalURL_;
};

}  // namespace web
