#pragma once

#include <QRectF>
#include <memory>

#include "platform/web/Page.h"
#include "platform/web/WebFrame.h"
#include "platform/web/WebFrameLoadDelegate.h"
#include "platform/web/WebPreferences.h"
#include "platform/web/WebResourceLoadDelegate.h"

namespace web {

/// The view that knows frames, resources and progress. It stands on a page which a WKWebView may
/// share: given the same request or document, both show one load. Main thread only.
class WebView : public PageObserver, public std::enable_shared_from_this<WebView> {
 public:
  /// `frame` is in points; the layout's width is the page's, not the frame's.
  static std::shared_ptr<WebView> create(std::shared_ptr<Page> page, const QRectF& frame);

  const std::shared_ptr<Page>& page() const { return page_; }
  WebFrame& mainFrame() { return mainFrame_; }

  void setFrameLoadDelegate(std::weak_ptr<WebFrameLoadDelegate> delegate);
  void setResourceLoadDelegate(std::weak_ptr<WebResourceLoadDelegate> delegate);
  /// A page has no list of the pages before it to go back to; kept as it was asked for.
  void setMaintainsBackForwardList(bool maintains) { maintainsBackForwardList_ = maintains; }
  bool maintainsBackForwardList() const { return maintainsBackForwardList_; }
  void setMediaStyle(const QString& mediaStyle);
  QString mediaStyle() const { return mediaStyle_; }
  WebPreferences& preferences() { return preferences_; }
  /// Off: no scroll bars take part in the layout.
  void setAllowsScrolling(bool allows);
  bool allowsScrolling() const { return allowsScrolling_; }

  QRectF frame() const { return frame_; }
  void setFrame(const QRectF& frame) { frame_ = frame; }

  void loadRequest(const PageRequest& request);
  void loadHTMLString(const QString& html, const QUrl& baseURL);
  /// Stops the page, for the other view of it too. No delegate is told.
  void stopLoading();
  double estimatedProgress() const { return page_->estimatedProgress(); }
  QUrl mainFrameURL() const { return page_->currentURL(); }
  void evaluateJavaScript(const QString& script, ValueCallback callback);

  void pageStartedProvisionalLoad(Page&, const Frame&) override;
  void pageReceivedRedirect(Page&, const Frame&) override;
  void pageCommittedLoad(Page&, const Frame&) override;
  void pageReceivedTitle(Page&, const QString& title) override;
  void pageReceivedData(Page&, const Frame&, const QString& resource, qint64 length) override;
  void pageFinishedLoad(Page&, const Frame&) override;
  void pageFailedLoad(Page&, LoadPhase, const Error&) override;

 private:
  WebView(std::shared_ptr<Page> page, const QRectF& frame);
  const WebFrame& frameFor(const Frame& frame, std::optional<WebFrame>& child);

  std::shared_ptr<Page> page_;
  QRectF frame_;
  WebFrame mainFrame_;
  WebPreferences preferences_;
  QString mediaStyle_ = QStringLiteral("screen");
  bool maintainsBackForwardList_ = true;
  bool allowsScrolling_ = true;
  std::weak_ptr<WebFrameLoadDelegate> frameLoadDelegate_;
  std::weak_ptr<WebResourceLoadDelegate> resourceLoadDelegate_;
};

}  // namespace web
