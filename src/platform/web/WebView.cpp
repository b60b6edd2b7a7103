#include "platform/web/WebView.h"

using namespace Qt::StringLiterals;

namespace web {

std::shared_ptr<WebView> WebView::create(std::shared_ptr<Page> page, const QRectF& frame) {
  std::shared_ptr<WebView> view(new WebView(std::move(page), frame));
  view->page_->addObserver(view);
  return view;
}

WebView::WebView(std::shared_ptr<Page> page, const QRectF& frame)
    : page_(std::move(page)), frame_(frame), mainFrame_(*this, Frame{}) {}

void WebView::setFrameLoadDelegate(std::weak_ptr<WebFrameLoadDelegate> delegate) {
  frameLoadDelegate_ = std::move(delegate);
}

void WebView::setResourceLoadDelegate(std::weak_ptr<WebResourceLoadDelegate> delegate) {
  resourceLoadDelegate_ = std::move(delegate);
}

void WebView::setMediaStyle(const QString& mediaStyle) {
  if (mediaStyle == mediaStyle_) return;
  mediaStyle_ = mediaStyle;
  page_->send(u"Emulation.setEmulatedMedia"_s, {{u"media"_s, mediaStyle}});
}

void WebView::setAllowsScrolling(bool allows) {
  if (allows == allowsScrolling_) return;
  allowsScrolling_ = allows;
  page_->send(u"Emulation.setScrollbarsHidden"_s, {{u"hidden"_s, !allows}});
}

void WebView::loadRequest(const PageRequest& request) {
  mainFrame_.provisionalURL_ = request.url;
  page_->loadFor(this, request);
}

void WebView::loadHTMLString(const QString& html, const QUrl& baseURL) {
  PageRequest request;
  request.url = baseURL;
  request.markup = html;
  loadRequest(request);
}

void WebView::stopLoading() {
  page_->stopLoading();
}

void WebView::evaluateJavaScript(const QString& script, ValueCallback callback) {
  page_->evaluate(script, std::move(callback));
}

/// Main frame events go through the one object that `mainFrame` returns.
const WebFrame& WebView::frameFor(const Frame& frame, std::optional<WebFrame>& child) {
  if (!frame.isMain()) return child.emplace(*this, frame);
  mainFrame_.frame_ = frame;
  return mainFrame_;
}

void WebView::pageStartedProvisionalLoad(Page&, const Frame& frame) {
  std::optional<WebFrame> child;
  const WebFrame& started = frameFor(frame, child);
  if (frame.isMain()) mainFrame_.provisionalURL_ = frame.url;
  if (const auto delegate = frameLoadDelegate_.lock())
    delegate->webViewDidStartProvisionalLoadForFrame(*this, started);
}

void WebView::pageReceivedRedirect(Page&, const Frame& frame) {
  std::optional<WebFrame> child;
  const WebFrame& redirected = frameFor(frame, child);
  if (frame.isMain()) mainFrame_.provisionalURL_ = frame.url;
  if (const auto delegate = frameLoadDelegate_.lock())
    delegate->webViewDidReceiveServerRedirectForProvisionalLoadForFrame(*this, redirected);
}

void WebView::pageCommittedLoad(Page&, const Frame& frame) {
  std::optional<WebFrame> child;
  if (const auto delegate = frameLoadDelegate_.lock())
    delegate->webViewDidCommitLoadForFrame(*this, frameFor(frame, child));
}

void WebView::pageReceivedTitle(Page&, const QString& title) {
  if (const auto delegate = frameLoadDelegate_.lock())
    delegate->webViewDidReceiveTitleForFrame(*this, title, mainFrame_);
}

void WebView::pageReceivedData(Page&, const Frame& frame, const QString& resource, qint64 length) {
  std::optional<WebFrame> child;
  if (const auto delegate = resourceLoadDelegate_.lock())
    delegate->webViewResourceDidReceiveContentLengthFromDataSource(*this, resource, length,
                                                                   frameFor(frame, child));
}

void WebView::pageFinishedLoad(Page&, const Frame& frame) {
  std::optional<WebFrame> child;
  if (const auto delegate = frameLoadDelegate_.lock())
    delegate->webViewDidFinishLoadForFrame(*this, frameFor(frame, child));
}

void WebView::pageFailedLoad(Page&, LoadPhase phase, const Error& error) {
  const auto delegate = frameLoadDelegate_.lock();
  if (!delegate) return;
  if (phase == LoadPhase::Provisional)
    delegate->webViewDidFailProvisionalLoadWithErrorForFrame(*this, error, mainFrame_);
  else
    delegate->webViewDidFailLoadWithErrorForFrame(*this, error, mainFrame_);
}

}  // namespace web
