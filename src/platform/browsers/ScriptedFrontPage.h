#pragma once

#include <memory>

#include "platform/browsers/BrowserScripts.h"
#include "platform/browsers/FrontPage.h"

namespace desktop {
class RunningApplications;
class ScriptRunner;
}  // namespace desktop

namespace browsers {

/// A browser that is asked by the system's own scripts. An error of any kind is "none".
class ScriptedFrontPage : public FrontPage {
 public:
  ScriptedFrontPage(ScriptedBrowser browser, std::shared_ptr<desktop::ScriptRunner> runner,
                    std::shared_ptr<desktop::RunningApplications> applications);

  bool isRunning() const override;
  /// Safari's styles and frames are asked for only when it gave its document; Chrome's always.
  PageTexts capture() override;
  std::optional<QString> source() override;
  std::optional<QString> address() override;
  std::optional<QString> unavailableReason() const override { return std::nullopt; }

 private:
  std::optional<QString> run(const QString& script) const;

  const ScriptedBrowser browser_;
  const std::shared_ptr<desktop::ScriptRunner> runner_;
  const std::shared_ptr<desktop::RunningApplications> applications_;
};

}  // namespace browsers
