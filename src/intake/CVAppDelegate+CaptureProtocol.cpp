#include <new>

#include "intake/CVAppDelegate.h"
#include "intake/CapturePayload.h"
#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

const QString directURLWarning =
    u"You should not open direct URLs with Corvalis. Instead, use the extension, bookmarklet, "
    "Capture from Safari or Capture from Chrome."_s;
const QString oldBookmarkletWarning =
    u"It seems you are using an old bookmarklet version. Please make sure to update your bookmarklet."_s;
const QString dropZoneWarning =
    u"Drop zone should not be used for enqueing URLs. Capture directly from Safari or Chrome, or "
    u"use "
    "Bookmarklet, for best results."_s;
const QString tooLargeWarning =
    u"A page was not captured because it is larger than 256 MB. Open it in the mini browser instead."_s;
const QString outOfMemoryWarning =
    u"A page was not captured because there is not enough memory for it."_s;

/// What an account redirect may look like at most; anything longer is a page.
constexpr qsizetype longestRedirect = 64LL * 1024;

std::shared_ptr<CVUtils> utils() {
  return CVObjectRepository::singleton().getUtils();
}

QString fullText(const QUrl& url) {
  return url.toString(QUrl::FullyEncoded);
}

/// The whole text of both, so that "http://a" and "http://a/" differ.
bool isSameAddress(const std::optional<QUrl>& shown, const QUrl& url) {
  return shown && fullText(*shown) == fullText(url);
}

}  // namespace

void CVAppDelegate::activate(const QVariantMap&) {
  applicationShouldHandleReopen(true);
}

void CVAppDelegate::open(const QStringList& addresses, const QVariantMap&) {
  for (const QString& address : addresses)
    handleAppleEvent(address);
}

void CVAppDelegate::activateAction(const QString& name, const QVariantList&, const QVariantMap&) {
  if (name == u"capture-from-safari"_s) return onCaptureFromSafari();
  if (name == u"capture-from-chrome"_s) return onCaptureFromChrome();
  if (name == u"paste"_s) return onPasteURL();
  logLine(u"Unknown action"_s);
}

void CVAppDelegate::handleAppleEvent(const QString& text) {
  logLine(u"Handling URL event"_s);
  const auto ended = [weak = weak_from_this()](CVRedirectOutcome outcome) {
    if (const auto self = weak.lock()) self->redirectEnded(outcome);
  };
  const bool isRedirect = services_.redirectHandler && text.size() <= longestRedirect &&
                          services_.redirectHandler->handleRedirectURL(QUrl(text), ended);
  logLine(u"After dropbox"_s);
  if (isRedirect) {
    logLine(u"Dropbox"_s);
    return withMainWindow([](CVMainWindow& window) { window.bringToFront(); });
  }
  if (text.size() > CapturePayload::maximumSize) return addWarning(tooLargeWarning);
  whenLaunched([weak = weak_from_this(), text] {
    if (const auto self = weak.lock()) self->decodeCaptureRequest(text);
  });
}

void CVAppDelegate::redirectEnded(CVRedirectOutcome outcome) {
  if (outcome != CVRedirectOutcome::Success) return;
  dispatch::mainAsync([] {
    if (const auto service = utils()) {
      service->displayOKAlertWithTitle(u"DropBox Successfully Linked"_s,
                                       u"You have successfully linked Corvalis to your Dropbox!"_s);
    }
  });
}

/// Work that comes before start-up has finished is kept, and holds no thread while it waits.
void CVAppDelegate::whenLaunched(std::function<void()> work) {
  {
    std::lock_guard lock(mutex_);
    if (!launched_) {
      logLine(u"Waiting for launched..."_s);
      waitingForLaunch_.push_back(std::move(work));
      return;
    }
  }
  dispatch::globalAsync(dispatch::Priority::Default, std::move(work));
}

void CVAppDelegate::decodeCaptureRequest(const QString& text) try {
  if (CapturePayload::isIgnored(text)) return;
  const auto self = shared_from_this();
  dispatch::mainAsync([self] { self->snapEffect(); });
  const CapturePayload payload = CapturePayload::decode(text);
  if (payload.kind == CapturePayload::Kind::DirectAddress) return openDirectURL(payload.address);
  if (payload.isFromOldBookmarklet()) addWarning(oldBookmarkletWarning);
  const auto service = utils();
  if (!service || !payload.address) return;
  const auto merged = service->mergePageCode(payload.page, payload.styles, payload.frames);
  addEntryWithSource(merged, *payload.address, false);
} catch (const std::bad_alloc&) {
  addWarning(outOfMemoryWarning);
}

void CVAppDelegate::openDirectURL(const std::optional<QUrl>& url) {
  addWarning(directURLWarning);
  logLine(u"Handling URL opening: "_s + (url ? fullText(*url) : u"(null)"_s));
  if (url) processURLs({*url});
}

void CVAppDelegate::processURLs(const QList<QUrl>& urls) {
  dispatch::globalAsync(dispatch::Priority::Default, [self = shared_from_this(), urls] {
    self->beginProcessingURLs();
    for (const QUrl& url : urls) {
      if (self->isEnding_) break;
      self->processURL(url);
    }
    self->endProcessingURLs();
  });
}

void CVAppDelegate::beginProcessingURLs() {
  std::lock_guard lock(mutex_);
  ++processURLSInvocationCount_;
  setState(u"Processing URLs..."_s);
}

void CVAppDelegate::processURL(const QUrl& url) {
  setState(u"Processing URL: "_s + fullText(url) + u"..."_s);
  if (handleURLFromBrowser(url)) return;
  const auto table = tableViewController();
  const auto entry = services_.makeEntry(url, std::nullopt, false, QSizeF(0, 0));
  if (table && entry) table->addEntry(entry);
  addWarning(dropZoneWarning);
}

void CVAppDelegate::endProcessingURLs() {
  std::lock_guard lock(mutex_);
  if (--processURLSInvocationCount_ == 0) restoreState();
}

bool CVAppDelegate::handleURLFromBrowser(const QUrl& url) {
  const auto service = utils();
  if (!service) return false;
  const bool safariRuns = service->applicationIsRunning(u"com.apple.Safari"_s);
  const bool chromeRuns = service->applicationIsRunning(u"com.google.Chrome"_s);
  if (safariRuns && isSameAddress(service->getURLFromSafari(), url)) {
    captureFromSafari();
    return true;
  }
  if (chromeRuns && isSameAddress(service->getURLFromChrome(), url)) {
    captureFromChrome();
    return true;
  }
  return false;
}

void CVAppDelegate::addEntryWithSource(const std::optional<QString>& source, const QUrl& url,
                                       bool useJavascript) {
  addEntryWithSource(source, url, useJavascript, QSizeF(0, 0));
}

void CVAppDelegate::addEntryWithSource(const std::optional<QString>& source, const QUrl& url,
                                       bool useJavascript, const QSizeF& size) {
  dispatch::globalAsync(
      dispatch::Priority::Default, [self = shared_from_this(), source, url, useJavascript, size] {
        const auto table = self->tableViewController();
        const auto entry = self->services_.makeEntry(url, source, useJavascript, size);
        if (table && entry) table->addEntry(entry);
      });
}

void CVAppDelegate::miniBrowserSnapWithURL(CVMiniBrowserWindowController&, const QUrl& url,
                                           const std::optional<QString>& source,
                                           const QSizeF& size) {
  addEntryWithSource(source, url, false, size);
}
