#include "platform/web/WKWebView.h"

namespace web {

std::shared_ptr<WKWebView> WKWebView::create(std::shared_ptr<Page> page, const QRectF& frame,
                                             const WKPreferences& preferences) {
  std::shared_ptr<WKWebView> view(new WKWebView(std::move(page), frame, preferences));
  view->page_->addObserver(view);
  return view;
}

WKWebView::WKWebView(std::shared_ptr<Page> page, const QRectF& frame,
                     const WKPreferences& preferences)
    : page_(std::move(page)), frame_(frame), preferences_(preferences) {}

void WKWebView::setNavigationDelegate(std::weak_ptr<WKNavigationDelegate> delegate) {
  navigationDelegate_ = std::move(delegate);
}

std::shared_ptr<const WKWebView::LoadingObserver> WKWebView::observeLoading(
    LoadingObserver observer) {
  auto observation = std::make_shared<const LoadingObserver>(std::move(observer));
  loadingObservers_.push_back(observation);
  return observation;
}

void WKWebView::loadRequest(const PageRequest& request) {
  const auto load = [weak = weak_from_this(), request](WKNavigationPolicy policy) {
    const auto self = weak.lock();
    if (self && policy == WKNavigationPolicy::Allow) self->page_->loadFor(self.get(), request);
  };
  if (const auto delegate = navigationDelegate_.lock())
    delegate->webViewDecidePolicyForNavigationAction(*this, request.url, load);
  else
    load(WKNavigationPolicy::Allow);
}

void WKWebView::loadHTMLString(const QString& html, const QUrl& baseURL) {
  PageRequest request;
  request.url = baseURL;
  request.markup = html;
  loadRequest(request);
}

void WKWebView::stopLoading() {
  page_->stopLoading();
}

void WKWebView::evaluateJavaScript(const QString& script, ValueCallback callback) {
  page_->evaluate(script, std::move(callback));
}

void WKWebView::pageReceivedResponse(Page&, const Response& response) {
  const auto delegate = navigationDelegate_.lock();
  if (!delegate) return;
  delegate->webViewDecidePolicyForNavigationResponse(
      *this, response, [weak = weak_from_this()](WKNavigationPolicy policy) {
        const auto self = weak.lock();
        if (self && policy == WKNavigationPolicy::Cancel) self->stopLoading();
      });
}

void WKWebView::pageFinishedLoad(Page&, const Frame& frame) {
  const auto delegate = navigationDelegate_.lock();
  if (delegate && frame.isMain()) delegate->webViewDidFinishNavigation(*this);
}

void WKWebView::pageFailedLoad(Page&, LoadPhase, const Error& error) {
  if (const auto delegate = navigationDelegate_.lock())
    delegate->webViewDidFailNavigationWithError(*this, error);
}

void WKWebView::pageChangedLoading(Page&, bool loading) {
  std::erase_if(loadingObservers_, [](const auto& observer) { return observer.expired(); });
  const auto observers = loadingObservers_;
  for (const auto& weak : observers)
    if (const auto observer = weak.lock()) (*observer)(loading);
}

}  // namespace web
