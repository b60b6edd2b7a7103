#include "platform/browsers/UserBrowsers.h"

#include "platform/browsers/AddOnFrontPage.h"
#include "platform/browsers/DevToolsFrontPage.h"
#include "platform/browsers/ScriptedFrontPage.h"
#include "platform/desktop/RunningApplications.h"
#include "platform/desktop/ScriptRunner.h"

namespace browsers {
namespace {

class AbsentBrowser : public FrontPage {
 public:
  bool isRunning() const override { return false; }
  PageTexts capture() override { return {}; }
  std::optional<QString> source() override { return std::nullopt; }
  std::optional<QString> address() override { return std::nullopt; }
  std::optional<QString> unavailableReason() const override { return std::nullopt; }
};

/// The add-on where it is connected: it needs no leave and sees more of the page.
class AddOnOrDevTools : public FrontPage {
 public:
  AddOnOrDevTools(std::shared_ptr<FrontPage> addOn, std::shared_ptr<FrontPage> devTools)
      : addOn_(std::move(addOn)), devTools_(std::move(devTools)) {}

  bool isRunning() const override { return addOn_->isRunning() || devTools_->isRunning(); }
  PageTexts capture() override { return chosen().capture(); }
  std::optional<QString> source() override { return std::nullopt; }
  std::optional<QString> address() override { return chosen().address(); }
  std::optional<QString> unavailableReason() const override { return chosen().unavailableReason(); }

 private:
  FrontPage& chosen() const { return addOn_->isRunning() ? *addOn_ : *devTools_; }

  const std::shared_ptr<FrontPage> addOn_;
  const std::shared_ptr<FrontPage> devTools_;
};

bool hasScripts(const BrowserAccess& access) {
  return access.scriptRunner && access.scriptRunner->isAvailable();
}

}  // namespace

std::shared_ptr<FrontPage> safariFrontPage(const BrowserAccess& access) {
  if (!hasScripts(access)) return std::make_shared<AbsentBrowser>();
  return std::make_shared<ScriptedFrontPage>(ScriptedBrowser::Safari, access.scriptRunner,
                                             access.applications);
}

std::shared_ptr<FrontPage> chromeFrontPage(const BrowserAccess& access) {
  if (hasScripts(access))
    return std::make_shared<ScriptedFrontPage>(ScriptedBrowser::Chrome, access.scriptRunner,
                                               access.applications);
  auto devTools = std::make_shared<DevToolsFrontPage>(access.applications);
  if (!access.addOnDoor) return devTools;
  return std::make_shared<AddOnOrDevTools>(std::make_shared<AddOnFrontPage>(access.addOnDoor),
                                           std::move(devTools));
}

}  // namespace browsers
