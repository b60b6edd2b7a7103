#include "platform/desktop/BrowserOpener.h"

#include "platform/base/Log.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// The browser's own start may take long; it is the launcher that has to hand over.
constexpr std::chrono::seconds patience{15};

bool isWebAddress(const QUrl& address) {
  return address.isValid() && !address.host().isEmpty() &&
         (address.scheme() == u"http"_s || address.scheme() == u"https"_s);
}

void conclude(const BrowserOpener::Completion& completion, const MaybeError& error) {
  if (error) logLine(u"An address could not be opened: %1"_s.arg(error->localizedDescription));
  if (completion) completion(error);
}

class DefaultBrowser : public BrowserOpener {
 public:
  void open(const QUrl& address, Completion completion) override {
    if (!isWebAddress(address))
      return dispatch::mainAsync([completion = std::move(completion)] {
        conclude(completion, desktopError(DesktopErrorFile, u"It is not a web address."_s));
      });
    openWithRegisteredProgram(QString::fromLatin1(address.toEncoded()), patience,
                              [completion = std::move(completion)](const MaybeError& error) {
                                conclude(completion, error);
                              });
  }
};

}  // namespace

std::shared_ptr<BrowserOpener> BrowserOpener::create() {
  return std::make_shared<DefaultBrowser>();
}

}  // namespace desktop
