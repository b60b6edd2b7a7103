#include "intake/CVAppDelegate.h"

#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

std::shared_ptr<CVAppDelegate> CVAppDelegate::create(Services services) {
  return std::shared_ptr<CVAppDelegate>(new CVAppDelegate(std::move(services)));
}

CVAppDelegate::CVAppDelegate(Services services) : services_(std::move(services)) {}

CVAppDelegate::~CVAppDelegate() = default;

void CVAppDelegate::setMainWindow(CVMainWindow* window) {
  window_ = window;
}

void CVAppDelegate::setTableViewController(std::shared_ptr<CVEntryTable> table) {
  std::lock_guard lock(mutex_);
  tableViewController_ = std::move(table);
}

std::shared_ptr<CVEntryTable> CVAppDelegate::tableViewController() const {
  std::lock_guard lock(mutex_);
  return tableViewController_;
}

void CVAppDelegate::withMainWindow(std::function<void(CVMainWindow&)> act) {
  dispatch::mainAsync([weak = weak_from_this(), act = std::move(act)] {
    const auto self = weak.lock();
    if (self && self->window_) act(*self->window_);
  });
}

void CVAppDelegate::setState(const QString& text) {
  withMainWindow([text](CVMainWindow& window) {
    window.setSpin(true);
    window.setStateText(text);
    window.setDragEnabled(false);
  });
}

void CVAppDelegate::restoreState() {
  withMainWindow([](CVMainWindow& window) {
    window.setSpin(false);
    window.setStateText(QString());
    window.setDragEnabled(true);
  });
}

void CVAppDelegate::snapEffect() {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  if (!preferences || !preferences->snapEffect()) return;
  withMainWindow([](CVMainWindow& window) { window.playSnapEffect(); });
}

void CVAppDelegate::addWarning(const QString& text) {
  {
    std::lock_guard lock(mutex_);
    if (!warnings_.contains(text)) warnings_.append(text);
  }
  withMainWindow([](CVMainWindow& window) { window.showWarningButton(); });
}

QStringList CVAppDelegate::warnings() const {
  std::lock_guard lock(mutex_);
  return warnings_;
}

void CVAppDelegate::setDarkTheme() {
  withMainWindow([](CVMainWindow& window) { window.setDarkTheme(); });
}

void CVAppDelegate::setLightTheme() {
  withMainWindow([](CVMainWindow& window) { window.setLightTheme(); });
}

void CVAppDelegate::updateAddButton() {
  withMainWindow([](CVMainWindow& window) { window.updateAddButton(); });
}

void CVAppDelegate::settingsCouldNotBeSaved(const Error& error) {
  logLine(u"Settings could not be saved: "_s + error.localizedDescription);
  addWarning(error.localizedDescription);
}
