#include "capture/CVURLEntry.h"

#include "capture/CVPageView.h"
#include "capture/CVPrintImageView.h"
#include "capture/ConversionAhead.h"
#include "delivery/CVUtils.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVObjectRepository.h"
#include "settings/CVPreferences.h"

CVURLEntry::CVURLEntry(CVCaptureServices services, QUrl url, std::optional<QString> source,
                       bool forceJavascript)
    : CVURLEntry(std::move(services), std::move(url), std::move(source), forceJavascript,
                 QSizeF(0, 0)) {}

CVURLEntry::CVURLEntry(CVCaptureServices services, QUrl url, std::optional<QString> source,
                       bool forceJavascript, QSizeF forceSize)
    : CVEntry(std::move(url), std::move(source)),
      services_(std::move(services)),
      forceSize_(!(forceSize.width() == 0)),
      forcedSize_(forceSize),
      forceJavascript_(forceJavascript) {}

CVURLEntry::~CVURLEntry() {
  // The last holder may be a pool thread; pages and timers belong to the main one.
  dispatch::mainAsync([webView = std::move(webView_), wkWebView = std::move(wkWebView_),
                       browser = std::move(miniBrowser_),
                       timer = std::shared_ptr<dispatch::Timer>(std::move(cancelSource_))] {});
}

std::shared_ptr<CVURLEntry> CVURLEntry::self() {
  return std::static_pointer_cast<CVURLEntry>(shared_from_this());
}

std::shared_ptr<CVUtils> CVURLEntry::utils() const {
  return CVObjectRepository::singleton().getUtils();
}

bool CVURLEntry::useJavascript() const {
  return source() ? forceJavascript_ : true;
}

void CVURLEntry::displayAdjustmentWindow() {
  if (!services_.makeMiniBrowser) return;
  if (!miniBrowser_) {
    miniBrowser_ = services_.makeMiniBrowser();
    miniBrowser_->setDelegate(self());
  }
  miniBrowser_->loadURL(currentURL().value_or(initialURL()));
  miniBrowser_->makeKeyAndOrderFront();
}

std::shared_ptr<web::Page> CVURLEntry::loadedPage() const {
  std::lock_guard lock(resultMutex_);
  return loadedPage_;
}

std::shared_ptr<web::Page> CVURLEntry::page() const {
  std::lock_guard lock(resultMutex_);
  return convertedPage_;
}

std::optional<QUrl> CVURLEntry::resultLocation() const {
  std::lock_guard lock(resultMutex_);
  return preferences_ ? preferences_->downloadLocation() : std::nullopt;
}

std::optional<CVConversionFacts> CVURLEntry::conversionFacts() const {
  std::lock_guard lock(resultMutex_);
  return conversionFacts_;
}
