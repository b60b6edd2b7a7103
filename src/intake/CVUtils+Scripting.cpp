#include "delivery/CVUtils.h"
#include "platform/browsers/FrontPage.h"
#include "platform/desktop/RunningApplications.h"
#include "platform/desktop/ScriptRunner.h"

using namespace Qt::StringLiterals;

namespace {

std::optional<QUrl> addressWithText(const std::optional<QString>& text) {
  if (!text || text->isEmpty()) return std::nullopt;
  const QUrl url(*text);
  return url.isValid() ? std::optional(url) : std::nullopt;
}

std::optional<QUrl> addressOf(const std::shared_ptr<browsers::FrontPage>& page) {
  return page ? addressWithText(page->address()) : std::nullopt;
}

browsers::PageTexts capturedFrom(const std::shared_ptr<browsers::FrontPage>& page) {
  return page ? page->capture() : browsers::PageTexts();
}

}  // namespace

std::optional<QString> CVUtils::runAppleScript(const QString& script) const {
  if (!services_.scriptRunner) return std::nullopt;
  const auto result = services_.scriptRunner->run(script);
  return result ? std::optional(*result) : std::nullopt;
}

std::optional<QString> CVUtils::getDOMFromSafari() const {
  const auto texts = capturedFrom(services_.safari);
  if (!texts.document) return std::nullopt;
  return mergePageCode(texts.document, texts.styles, texts.frames);
}

std::optional<QString> CVUtils::getSourceFromSafari() const {
  return services_.safari ? services_.safari->source() : std::nullopt;
}

std::optional<QString> CVUtils::getDOMFromChrome() const {
  const auto texts = capturedFrom(services_.chrome);
  return mergePageCode(texts.document, texts.styles, texts.frames);
}

CVUtils::FrontDocument CVUtils::getFrontDocumentFromChrome() const {
  const auto texts = capturedFrom(services_.chrome);
  return {mergePageCode(texts.document, texts.styles, texts.frames),
          texts.address ? addressWithText(texts.address) : getURLFromChrome()};
}

std::optional<QUrl> CVUtils::getURLFromSafari() const {
  return addressOf(services_.safari);
}

std::optional<QUrl> CVUtils::getURLFromChrome() const {
  return addressOf(services_.chrome);
}

bool CVUtils::applicationIsRunning(const QString& bundleIdentifier) const {
  // A browser with our add-on counts also where its profile is not one of those that we know.
  if (bundleIdentifier == u"com.google.Chrome" && services_.chrome && services_.chrome->isRunning())
    return true;
  return services_.runningApplications &&
         services_.runningApplications->isRunning(bundleIdentifier);
}
