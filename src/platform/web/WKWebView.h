#pragma once

#include <QRectF>
#include <functional>
#include <memory>
#include <vector>

#include "platform/web/Page.h"
#include "platform/web/WKNavigationDelegate.h"
#include "platform/web/WebPreferences.h"

namespace web {

/// The view that knows "loading" and scripts. It stands on a page which a WebView may share: given
/// the same request or document, both show one load. Main thread only.
class WKWebView : public PageObserver, public std::enable_shared_from_this<WKWebView> {
 public:
  /// `frame` is in points; the layout's width is the page's, not the frame's.
  static std::shared_ptr<WKWebView> create(std::shared_ptr<Page> page, const QRectF& frame,
                                           const WKPreferences& preferences = {});

  const std::shared_ptr<Page>& page() const { return page_; }
  const WKPreferences& preferences() const { return preferences_; }
  void setNavigationDelegate(std::weak_ptr<WKNavigationDelegate> delegate);

  using LoadingObserver = std::function<void(bool newValue)>;
  /// Called with each new value of "loading" while the returned object is held.
  [[nodiscard]] std::shared_ptr<const LoadingObserver> observeLoading(LoadingObserver observer);
  bool isLoading() const { return page_->isLoading(); }

  QRectF frame() const { return frame_; }
  void setFrame(const QRectF& frame) { frame_ = frame; }

  void loadRequest(const PageRequest& request);
  void loadHTMLString(const QString& html, const QUrl& baseURL);
  /// Stops the page, for the other view of it too. No failure is reported.
  void stopLoading();
  void evaluateJavaScript(const QString& script, ValueCallback callback);

  void pageReceivedResponse(Page&, const Response&) override;
  void pageFinishedLoad(Page&, const Frame&) override;
  void pageFailedLoad(Page&, LoadPhase, const Error&) override;
  void pageChangedLoading(Page&, bool loading) override;

 private:
  WKWebView(std::shared_ptr<Page> page, const QRectF& frame, const WKPreferences& preferences);

  std::shared_ptr<Page> page_;
  QRectF frame_;
  WKPreferences preferences_;
  std::weak_ptr<WKNavigationDelegate> navigationDelegate_;
  std::vector<std::weak_ptr<const LoadingObserver>> loadingObservers_;
};

}  // namespace web
