#include "intake/CVAppDelegate.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "ui/look/NamedImage.h"
#include "ui/popovers/CVAddPopoverController.h"
#include "ui/popovers/CVBatchPopoverController.h"
#include "ui/popovers/CVWarningPopoverController.h"
#include "ui/popovers/Popover.h"
#include "ui/window/CVMainWindowController.h"
#include "ui_CVMainWindowController.h"

using namespace Qt::StringLiterals;

void CVMainWindowController::onAdd() {
  auto& repository = CVObjectRepository::singleton();
  const auto preferences = repository.getPreferences();
  const auto behaviour = preferences ? preferences->addButtonBehaviour() : std::nullopt;
  if (behaviour == u"safari"_s) return captureFromSafari();
  if (behaviour == u"chrome"_s) return captureFromChrome();
  const auto utils = repository.getUtils();
  CVAddPopoverController::Browsers running;
  running.showSafari = utils && utils->applicationIsRunning(u"com.apple.Safari"_s);
  running.showChrome = utils && utils->applicationIsRunning(u"com.google.Chrome"_s);
  addPopover_ = openPopover(new CVAddPopoverController(running), *layout_->addButton);
  layout_->addButton->setIcon(ui::namedIcon(themedIconName(u"add"_s, true)));
}

void CVMainWindowController::onBatch() {
  batchPopover_ = openPopover(new CVBatchPopoverController(batchState_), *layout_->batchButton);
  layout_->batchButton->setIcon(ui::namedIcon(themedIconName(u"settings"_s, true)));
}

void CVMainWindowController::showWarnings() {
  if (!services_.delegate) return;
  auto* content = new CVWarningPopoverController(services_.delegate->warnings());
  warningPopover_ = openPopover(content, *layout_->warningButton);
}

ui::Popover* CVMainWindowController::openPopover(QWidget* content, QWidget& anchor) {
  auto* popover = new ui::Popover(content, this);
  connect(popover, &ui::Popover::closed, this, &CVMainWindowController::popoverDidClose);
  const bool right = &anchor == layout_->warningButton;
  popover->showRelativeTo(anchor, right ? ui::Popover::Edge::Right : ui::Popover::Edge::Above);
  return popover;
}

void CVMainWindowController::popoverDidClose() {
  layout_->addButton->setIcon(imageForAddButton());
  layout_->batchButton->setIcon(ui::namedIcon(themedIconName(u"settings"_s, false)));
}

void CVMainWindowController::closeAddPopover() {
  if (addPopover_) addPopover_->close();
}

void CVMainWindowController::closeBatchPopover() {
  if (batchPopover_) batchPopover_->close();
}
