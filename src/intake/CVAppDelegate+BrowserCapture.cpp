#include "intake/CVAppDelegate.h"
#include "platform/browsers/FrontPage.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

const QString scriptAccessWarning =
    u"For best results when capturing from Safari, please enable \"Allow Javascript from Apple "
    "Events\" in Safari's Develop Menu."_s;

std::shared_ptr<CVUtils> utils() {
  return CVObjectRepository::singleton().getUtils();
}

}  // namespace

bool CVAppDelegate::captureFromSafari() {
  withMainWindow([](CVMainWindow& window) { window.closeAddPopover(); });
  const auto service = utils();
  if (!service) return false;
  std::optional<QString> document = service->getDOMFromSafari();
  // The source as loaded needs the page's own scripts to build the page.
  const bool useJavascript = !document;
  if (!document) {
    addWarning(scriptAccessWarning);
    document = service->getSourceFromSafari();
  }
  const std::optional<QUrl> url = service->getURLFromSafari();
  if (!url || url->scheme() == u"favorites"_s) return false;
  addEntryWithSource(document, *url, useJavascript);
  return true;
}

bool CVAppDelegate::captureFromChrome() {
  withMainWindow([](CVMainWindow& window) { window.closeAddPopover(); });
  const auto service = utils();
  if (!service) return false;
  const auto [document, url] = service->getFrontDocumentFromChrome();
  if (!document || !url || url->scheme() == u"chrome"_s) return false;
  addEntryWithSource(document, *url, false);
  return true;
}

/// A browser that cannot be reached can often be told to allow it.
void CVAppDelegate::warnWhyUnavailable(browsers::FrontPage* page) {
  const auto reason = page ? page->unavailableReason() : std::nullopt;
  if (reason) addWarning(*reason);
}

void CVAppDelegate::onCaptureFromSafari() {
  // Off the main thread: the browser may take its time to answer.
  dispatch::globalAsync(dispatch::Priority::High, [self = shared_from_this()] {
    if (self->captureFromSafari()) self->snapEffect();
  });
}

void CVAppDelegate::onCaptureFromChrome() {
  dispatch::globalAsync(dispatch::Priority::High, [self = shared_from_this()] {
    if (self->captureFromChrome()) return self->snapEffect();
    if (const auto service = utils()) self->warnWhyUnavailable(service->services().chrome.get());
  });
}
