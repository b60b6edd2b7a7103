#include "platform/browsers/DevToolsFrontPage.h"

#include "platform/browsers/BrowserError.h"
#include "platform/browsers/DevToolsConnection.h"
#include "platform/browsers/FrontTab.h"
#include "platform/browsers/PagePrograms.h"
#include "platform/desktop/BrowserProfiles.h"
#include "platform/desktop/RunningApplications.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

tl::unexpected<Error> closedDoor() {
  return browserFailure(
      NoEndpoint,
      u"Corvalis cannot see the page in Chrome: turn remote debugging on at "
      u"chrome://inspect/#remote-debugging, or install the Corvalis add-on in the browser."_s);
}

tl::unexpected<Error> notAllowed() {
  return browserFailure(NotAllowed,
                        u"Chrome has not let Corvalis in: capture again and allow remote debugging "
                        u"when Chrome asks, or install the Corvalis add-on in the browser."_s);
}

std::optional<QString> textOf(const Result<QString>& result) {
  return result ? std::optional(*result) : std::nullopt;
}

Result<PageTexts> captureFrontTab(DevToolsConnection& browser) {
  const auto tab = findFrontTab(browser);
  if (!tab) return tl::unexpected(tab.error());
  const auto document = runInTab(browser, tab->target, documentProgram());
  if (!document)
    return browserFailure(NoPage, u"The page in Chrome could not be read: %1"_s.arg(
                                      document.error().localizedDescription));
  return PageTexts{*document, textOf(runInTab(browser, tab->target, stylesProgram())),
                   textOf(runInTab(browser, tab->target, framesProgram())), tab->address};
}

}  // namespace

DevToolsFrontPage::DevToolsFrontPage(std::shared_ptr<desktop::RunningApplications> applications,
                                     std::chrono::milliseconds permissionLimit)
    : applications_(std::move(applications)), permissionLimit_(permissionLimit) {}

DevToolsFrontPage::~DevToolsFrontPage() = default;

bool DevToolsFrontPage::isRunning() const {
  return applications_->isRunning(u"com.google.Chrome"_s);
}

PageTexts DevToolsFrontPage::capture() {
  std::lock_guard lock(conversationMutex_);
  const auto texts = ask<PageTexts>(Asking::Again, captureFrontTab);
  setReason(texts ? MaybeError() : MaybeError(texts.error()));
  return texts.value_or(PageTexts());
}

std::optional<QString> DevToolsFrontPage::address() {
  std::lock_guard lock(conversationMutex_);
  const auto tab = ask<BrowserTab>(Asking::NotAgain, findFrontTab);
  return tab ? std::optional(tab->address) : std::nullopt;
}

/// A connection that turns out to have ended, with a browser that was started anew, is made again
/// once.
template <class Value>
Result<Value> DevToolsFrontPage::ask(Asking asking,
                                     Result<Value> (*question)(DevToolsConnection&)) {
  for (const bool isFirst : {true, false}) {
    const auto browser = connection(asking);
    if (!browser) return tl::unexpected(browser.error());
    auto answer = question(**browser);
    if (answer || (*browser)->isOpen() || !isFirst) return answer;
  }
  return closedDoor();
}

std::optional<QString> DevToolsFrontPage::unavailableReason() const {
  std::lock_guard lock(reasonMutex_);
  return reason_;
}

void DevToolsFrontPage::setReason(const MaybeError& error) {
  std::lock_guard lock(reasonMutex_);
  reason_ = error ? std::optional(error->localizedDescription) : std::nullopt;
}

Result<std::shared_ptr<DevToolsConnection>> DevToolsFrontPage::connection(Asking asking) {
  Result<std::shared_ptr<DevToolsConnection>> outcome = closedDoor();
  for (const QString& folder : desktop::chromiumProfileFoldersInUse()) {
    const auto endpoint = readEndpoint(folder);
    if (!endpoint) continue;
    if (connection_ && connection_->isOpen() && connection_->endpoint() == *endpoint)
      return connection_;
    outcome = connectTo(*endpoint, asking);
    if (outcome) break;
  }
  if (outcome) connection_ = *outcome;
  return outcome;
}

Result<std::shared_ptr<DevToolsConnection>> DevToolsFrontPage::connectTo(
    const DevToolsEndpoint& endpoint, Asking asking) {
  if (asking == Asking::NotAgain && notAllowed_ == endpoint) return notAllowed();
  auto outcome = DevToolsConnection::open(endpoint, permissionLimit_);
  if (outcome) {
    notAllowed_.reset();
    return outcome;
  }
  if (outcome.error().code != NotAllowed) return closedDoor();
  notAllowed_ = endpoint;
  return notAllowed();
}

}  // namespace browsers
