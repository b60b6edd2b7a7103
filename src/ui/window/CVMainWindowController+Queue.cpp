#include <QScreen>
#include <QTimer>
#include <QVariantAnimation>

#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "ui/queue/CVEntryTableController.h"
#include "ui/window/CVMainWindowController.h"
#include "ui_CVMainWindowController.h"

namespace {

/// Points.
constexpr int barHeight = 67;
constexpr int rowHeight = 130;
constexpr int animationMilliseconds = 160;

}  // namespace

void CVMainWindowController::updateBottomControlsState() {
  if (!controlsTimer_->isActive()) controlsTimer_->start(0);
}

void CVMainWindowController::applyBottomControlsState() {
  if (!services_.table) return;
  batchState_ = ui::BatchState::of(services_.table->getEntries());
  layout_->batchButton->setVisible(batchState_.any());
  updateMenus();
}

void CVMainWindowController::resizeWindow() {
  if (!heightTimer_->isActive()) heightTimer_->start(0);
}

int CVMainWindowController::contentHeightForRows(int rows) const {
  return layout_->dragView->minimumHeight() + barHeight + rows * rowHeight;
}

/// What the window needs besides its content: here, the menu bar. The desktop's own title bar is
/// outside of the size that a program sets.
int CVMainWindowController::titleBarHeight() const {
  return isVisible() ? height() - centralWidget()->height() : menuWidget()->sizeHint().height();
}

int CVMainWindowController::rowsToShow() const {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  const int count = services_.table ? services_.table->numberOfRowsInTableView() : 0;
  const int most = preferences ? int(qMin<std::uint64_t>(preferences->queueSize(), INT_MAX)) : 3;
  return qMin(count, most);
}

void CVMainWindowController::applyHeight() {
  const int count = services_.table ? services_.table->numberOfRowsInTableView() : 0;
  showEmptyState(count == 0);
  const int room = screen()->availableGeometry().height();
  int rows = rowsToShow();
  while (rows > 1 && contentHeightForRows(rows) + titleBarHeight() > room)
    --rows;
  moveToHeight(contentHeightForRows(rows) + titleBarHeight());
}

/// The top edge stays where it is.
void CVMainWindowController::moveToHeight(int target) {
  heightAnimation_->stop();
  if (target == height()) return;
  if (!isVisible() || motionIsReduced()) return resize(width(), target);
  heightAnimation_->setDuration(animationMilliseconds);
  heightAnimation_->setEasingCurve(QEasingCurve::OutCubic);
  heightAnimation_->setStartValue(height());
  heightAnimation_->setEndValue(target);
  heightAnimation_->start();
}
