#include "capture/CVURLEntry.h"
#include "capture/CapturedSource.h"
#include "capture/LowDocument.h"
#include "delivery/CVUtils.h"
#include "platform/rendering/CapturePicture.h"
#include "platform/rendering/DocumentSize.h"
#include "platform/rendering/Settle.h"
#include "platform/web/Engine.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The views stand here before they have their document's size.
constexpr QPointF offScreen(-16000, -16000);
constexpr double loadHeight = 100;
constexpr double viewportHeight = 768;

constexpr auto requestTimeout = 5s;
constexpr auto loadTimeout = 120s;

/// The first release whose modern view can picture itself.
constexpr std::int64_t firstMinorVersionWithSnapshots = 13;

}  // namespace

void CVURLEntry::prepareWithCompletion(Completion completion) {
  loadError_.reset();
  setState(CVEntryStateDownloading);
  prepareCompletion_ = std::move(completion);
  dropViews();
  createViews(layoutWidth());
  setCurrentURL(initialURL());
  setCompletionFactor(0);
  setError(nullptr);
  cancelSource_ = dispatch::Timer::after(loadTimeout, [entry = weak_from_this()] {
    const auto strong = entry.lock();
    if (strong) std::static_pointer_cast<CVURLEntry>(strong)->finishedLoadingWithError(Error{});
  });
  loadViews();
}

double CVURLEntry::layoutWidth() const {
  if (forceSize_) return forcedSize_.width();
  const auto settings = CVObjectRepository::singleton().getPreferences();
  return static_cast<double>(settings->defaultSnapshotWidth());
}

void CVURLEntry::dropViews() {
  {
    std::lock_guard lock(resultMutex_);
    conversionAhead_.reset();
    loadedPage_.reset();
  }
  if (webView_) webView_->stopLoading();
  webView_.reset();
  stopObservingLoading();
  if (wkWebView_) wkWebView_->stopLoading();
  wkWebView_.reset();
  finishedLoadingCount_ = 0;
}

void CVURLEntry::createViews(double width) {
  web::PageConfiguration configuration;
  configuration.layoutWidth = width;
  configuration.viewportHeight = viewportHeight;
  configuration.deviceScaleFactor = services_.pixelsPerPoint;
  configuration.scripts = useJavascript() ? web::Scripts::Enabled : web::Scripts::Disabled;
  const std::shared_ptr<web::Page> page = services_.engine->createPage(configuration);
  rendering::watchObservers(*page);
  const QRectF frame(offScreen, QSizeF(width, loadHeight));

  webView_ = web::WebView::create(page, frame);
  webView_->setMaintainsBackForwardList(false);
  webView_->setFrameLoadDelegate(self());
  webView_->setResourceLoadDelegate(self());
  webView_->setMediaStyle(u"screen"_s);
  webView_->preferences().javaScriptEnabled = useJavascript();
  webView_->setAllowsScrolling(false);

  web::WKPreferences preferences;
  preferences.javaScriptEnabled = useJavascript();
  wkWebView_ = web::WKWebView::create(page, frame, preferences);
  wkWebView_->setNavigationDelegate(self());
  loadingObserver_ = wkWebView_->observeLoading([entry = weak_from_this()](bool loading) {
    const auto strong = entry.lock();
    if (strong) std::static_pointer_cast<CVURLEntry>(strong)->observeValueForKeyPath(loading);
  });
}

void CVURLEntry::loadViews() {
  if (const std::optional<QString> captured = source()) {
    setSource(capture::documentOfCapturedSource(*captured));
    const QUrl baseURL = currentURL().value_or(initialURL());
    webView_->mainFrame().loadHTMLString(*source(), baseURL);
    wkWebView_->loadHTMLString(*source(), baseURL);
    return;
  }
  web::PageRequest request;
  request.url = initialURL();
  request.responseTimeout = requestTimeout;
  // Without a captured document a local address was chosen by the user, never by a web page.
  if (request.url.isLocalFile()) request.localFiles = web::LocalFiles::Allowed;
  webView_->mainFrame().loadRequest(request);
  wkWebView_->loadRequest(request);
}

void CVURLEntry::finishedLoadingWithError(const MaybeError& error) {
  if (loadError_) return;
  if (error) return failLoad(*error);
  if (++finishedLoadingCount_ == 2) completeLoad();
}

void CVURLEntry::failLoad(const Error& error) {
  cancelSource_.reset();
  finishedLoadingCount_ = 0;
  auto record = std::make_shared<CVError>();
  record->setErrorType(0);
  setError(record);
  setState(CVEntryStateDownloaded);
  stopObservingLoading();
  endStep(prepareCompletion_, error);
  setCompletionFactor(1.0);
  loadError_ = error;
  callWaiting(error);
}

void CVURLEntry::callWaiting(const MaybeError& error) {
  for (const LoadEnded& waiting : std::exchange(whenLoaded_, {}))
    waiting(error);
}

void CVURLEntry::completeLoad() {
  cancelSource_.reset();
  finishedLoadingCount_ = 0;
  webView_->setFrameLoadDelegate({});
  webView_->setResourceLoadDelegate({});
  wkWebView_->setNavigationDelegate({});
  stopObservingLoading();
  {
    std::lock_guard lock(resultMutex_);
    loadedPage_ = capture::heldOnAnyThread(webView_->page());
  }
  if (services_.thumbnails == Thumbnails::Made)
    renderThumbnail();
  else
    workAhead();
  setWebViewRealHeight();
  setCompletionFactor(1.0);
  setState(CVEntryStateDownloaded);
  endStep(prepareCompletion_, std::nullopt);
  callWaiting(std::nullopt);
}

void CVURLEntry::stopObservingLoading() {
  loadingObserver_.reset();
}

/// What a conversion needs, done while others are converted. A page that is gone meanwhile has
/// nothing to settle.
void CVURLEntry::workAhead() {
  const bool converts = services_.conversions == Conversions::Ahead &&
                        !CVObjectRepository::singleton().getPreferences()->usePagination();
  if (converts) return convertAhead();
  if (const auto engine = loadedPage()) rendering::settle(engine, {}, [](const MaybeError&) {});
}

void CVURLEntry::renderThumbnail() {
  const auto storeImage = [entry = self()](std::shared_ptr<const imaging::Image> image) {
    entry->setRepresentativeImage(image);
  };
  const bool snapshots = utils()->getOSXVersion().minorVersion() >= firstMinorVersionWithSnapshots;
  if (!snapshots) return renderImageFromWebView(storeImage);
  wkWebView_->evaluateJavaScript(
      u"window.scrollTo(0, 768)"_s,
      [entry = self(), storeImage, loaded = loadedPage()](const Result<QJsonValue>&) {
        // The page may have been loaded anew meanwhile.
        if (entry->loadedPage() != loaded) return;
        entry->renderImageFromWKWebView(
            [entry, storeImage, loaded](std::shared_ptr<const imaging::Image> image) {
              if (entry->loadedPage() != loaded) return;
              storeImage(std::move(image));
              entry->setWKWebViewRealHeight();
              entry->workAhead();
            });
      });
}

void CVURLEntry::renderImageFromWebView(ImageCompletion completion) {
  rendering::viewportPicture(
      webView_->page(), [completion = std::move(completion)](const Result<QImage>& picture) {
        completion(picture ? std::make_shared<const imaging::Image>(*picture) : nullptr);
      });
}

void CVURLEntry::renderImageFromWKWebView(ImageCompletion completion) {
  if (!wkWebView_) return;
  rendering::viewportPicture(
      wkWebView_->page(), [completion = std::move(completion)](const Result<QImage>& picture) {
        completion(picture ? std::make_shared<const imaging::Image>(*picture) : nullptr);
      });
}

void CVURLEntry::realHeightFromWebView(std::function<void(QRectF)> completion) {
  rendering::documentSize(webView_->page(),
                          [completion = std::move(completion)](const Result<QSizeF>& size) {
                            QSizeF real = size.value_or(QSizeF(0, 0));
                            real.setHeight(lowDocument.heightFor(real.height()));
                            completion(QRectF(QPointF(0, 0), real));
                          });
}

void CVURLEntry::setWebViewRealHeight() {
  realHeightFromWebView([view = webView_](const QRectF& frame) { view->setFrame(frame); });
}

void CVURLEntry::setWKWebViewRealHeight() {
  if (!webView_) return;
  realHeightFromWebView([view = wkWebView_](const QRectF& frame) { view->setFrame(frame); });
}

void CVURLEntry::webViewDidReceiveServerRedirectForProvisionalLoadForFrame(
    web::WebView&, const web::WebFrame& frame) {
  if (frame.isMainFrame()) setCurrentURL(frame.provisionalURL());
}

void CVURLEntry::webViewDidReceiveTitleForFrame(web::WebView&, const QString& title,
                                                const web::WebFrame& frame) {
  if (!frame.isMainFrame()) return;
  const auto settings = CVObjectRepository::singleton().getPreferences();
  if (!settings->prependTitleWithWebsiteDomain()) return setTitle(title);
  const QString host = currentURL().value_or(QUrl()).host();
  // Without a host there is no composed title at all.
  setTitle(host.isEmpty() ? std::nullopt : std::optional(host + u" - "_s + title));
}

void CVURLEntry::webViewResourceDidReceiveContentLengthFromDataSource(web::WebView& view,
                                                                      const QString&, qint64,
                                                                      const web::WebFrame& frame) {
  if (!frame.isMainFrame()) return;
  const double progress = view.estimatedProgress();
  if (progress > 0) setCompletionFactor(progress);
}

void CVURLEntry::webViewDidFinishLoadForFrame(web::WebView&, const web::WebFrame& frame) {
  if (frame.isMainFrame()) finishedLoadingWithError(std::nullopt);
}

void CVURLEntry::webViewDidFailProvisionalLoadWithErrorForFrame(web::WebView&, const Error& error,
                                                                const web::WebFrame& frame) {
  if (frame.isMainFrame()) finishedLoadingWithError(error);
}

void CVURLEntry::webViewDidFailNavigationWithError(web::WKWebView&, const Error& error) {
  finishedLoadingWithError(error);
}

void CVURLEntry::observeValueForKeyPath(bool newValue) {
  if (!newValue) finishedLoadingWithError(std::nullopt);
}
