#include "platform/browsers/ScriptedFrontPage.h"

#include "platform/desktop/RunningApplications.h"
#include "platform/desktop/ScriptRunner.h"

using namespace Qt::StringLiterals;

namespace browsers {

ScriptedFrontPage::ScriptedFrontPage(ScriptedBrowser browser,
                                     std::shared_ptr<desktop::ScriptRunner> runner,
                                     std::shared_ptr<desktop::RunningApplications> applications)
    : browser_(browser), runner_(std::move(runner)), applications_(std::move(applications)) {}

bool ScriptedFrontPage::isRunning() const {
  return applications_->isRunning(browser_ == ScriptedBrowser::Safari ? u"com.apple.Safari"_s
                                                                      : u"com.google.Chrome"_s);
}

PageTexts ScriptedFrontPage::capture() {
  PageTexts texts;
  texts.document = run(documentScript(browser_));
  if (!texts.document && browser_ == ScriptedBrowser::Safari) return texts;
  texts.styles = run(stylesScript(browser_));
  texts.frames = run(framesScript(browser_));
  return texts;
}

std::optional<QString> ScriptedFrontPage::source() {
  if (browser_ != ScriptedBrowser::Safari) return std::nullopt;
  return run(safariSourceScript());
}

std::optional<QString> ScriptedFrontPage::address() {
  return run(addressScript(browser_));
}

std::optional<QString> ScriptedFrontPage::run(const QString& script) const {
  const auto result = runner_->run(script);
  return result ? std::optional(*result) : std::nullopt;
}

}  // namespace browsers
