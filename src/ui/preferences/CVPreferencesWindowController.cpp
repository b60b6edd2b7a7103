#include "ui/preferences/CVPreferencesWindowController.h"

#include <QKeyEvent>
#include <QVariantAnimation>

#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "ui_CVPreferencesWindowController.h"

namespace {

/// Points between the top of the window and the pane switcher.
constexpr int topSpace = 20;
constexpr int animationMilliseconds = 160;

}  // namespace

CVPreferencesWindowController::CVPreferencesWindowController(
    CVDropBoxPreferencesViewController::Account account, QWidget* parent)
    : QWidget(parent, Qt::Window), heightAnimation_(new QVariantAnimation(this)) {
  Ui::CVPreferencesWindowController().setupUi(this);
  setFocusPolicy(Qt::ClickFocus);
  preferencesViewController_ = new CVPreferencesViewController(
      CVObjectRepository::singleton().getPreferences(), this, std::move(account), this);
  preferencesViewController_->move(0, topSpace);
  preferencesViewController_->setResizeBlock([this] { fitToSwitcher(); });
  connect(heightAnimation_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& height) { setFixedHeight(height.toInt()); });
  heightAnimation_->setDuration(animationMilliseconds);
  heightAnimation_->setEasingCurve(QEasingCurve::OutCubic);
  setFixedWidth(preferencesViewController_->width());
  fitToSwitcher();
}

CVPreferencesWindowController::~CVPreferencesWindowController() = default;

void CVPreferencesWindowController::makeKeyAndOrderFront() {
  preferencesViewController_->display(preferencesViewController_->displayed());
  show();
  raise();
  activateWindow();
  setFocus();  // no control is marked before the keyboard is used
}

/// The top edge stays where it is.
void CVPreferencesWindowController::fitToSwitcher() {
  const int target = preferencesViewController_->height() + topSpace;
  heightAnimation_->stop();
  if (!isVisible()) return setFixedHeight(target);
  heightAnimation_->setStartValue(height());
  heightAnimation_->setEndValue(target);
  heightAnimation_->start();
}

void CVPreferencesWindowController::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}
