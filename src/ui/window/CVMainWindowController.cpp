#include "ui/window/CVMainWindowController.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QFontInfo>
#include <QTimer>
#include <QVariantAnimation>
#include <QWindow>

#include "intake/CVAppDelegate.h"
#include "platform/base/Log.h"
#include "platform/desktop/ColorSchemePreference.h"
#include "platform/desktop/SoundPlayer.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVOSXVersion.h"
#include "settings/CVObjectRepository.h"
#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"
#include "ui/popovers/Popover.h"
#include "ui/queue/CVEntryTableController.h"
#include "ui/window/AccessibleWindow.h"
#include "ui/window/DragDelegate.h"
#include "ui/window/QueueActions.h"
#include "ui/window/SavePanel.h"
#include "ui/window/SnapFlash.h"
#include "ui_CVMainWindowController.h"

using namespace Qt::StringLiterals;
using ui::Theme;

namespace {

constexpr int usualWidth = 440;
/// Pixels.
constexpr int usualText = 12;
constexpr int linesOfZone = 4;

std::optional<QString> setting(std::optional<QString> (CVDefaultPreferences::*get)() const) {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  return preferences ? ((*preferences).*get)() : std::nullopt;
}

}  // namespace

CVMainWindowController::CVMainWindowController(Services services)
    : services_(std::move(services)),
      layout_(std::make_unique<Ui::CVMainWindowController>()),
      arrow_([this](const QString& name) {
        layout_->arrowImageView->setPixmap(ui::namedPixmap(name, devicePixelRatioF()));
      }),
      heightTimer_(new QTimer(this)),
      controlsTimer_(new QTimer(this)),
      heightAnimation_(new QVariantAnimation(this)),
      queueActions_(std::make_unique<QueueActions>()) {
  ui::installAccessibleWindow();
  layout_->setupUi(this);
  layout_->busyIndicator->setAttribute(Qt::WA_StyledBackground);
  setWindowIcon(ui::applicationIcon());
  setTextFonts();
  nameControls();
  createMenus();
  connectControls();
  orderFocus();
  if (services_.delegate) services_.delegate->setMainWindow(this);
}

CVMainWindowController::~CVMainWindowController() {
  if (services_.delegate) services_.delegate->setMainWindow(nullptr);
  if (services_.table) services_.table->setTableView(nullptr);
}

/// Larger text than the layout is made for gets a higher drop zone.
void CVMainWindowController::setTextFonts() {
  layout_->dropLabel->setFont(ui::textFont(ui::TextSize::Title));
  layout_->hintLabel->setFont(ui::textFont(ui::TextSize::Secondary));
  layout_->stateLabel->setFont(ui::textFont(ui::TextSize::Body));
  const int larger = QFontInfo(layout_->stateLabel->font()).pixelSize() - usualText;
  layout_->dragView->setFixedHeight(layout_->dragView->minimumHeight() + linesOfZone * larger);
  layout_->warningButton->setFont(ui::textFont(ui::TextSize::Body));
}

void CVMainWindowController::nameControls() {
  const auto name = [](QWidget* control, const QString& name, const QString& toolTip) {
    control->setAccessibleName(name);
    control->setToolTip(toolTip);
  };
  name(layout_->addButton, tr("Add"), tr("Add pages"));
  name(layout_->batchButton, tr("Queue commands"), tr("Commands for the whole queue"));
  name(layout_->warningButton, tr("Warnings"), tr("Show the warnings"));
  layout_->dragView->setAccessibleName(tr("Drop zone"));
}

void CVMainWindowController::connectControls() {
  connect(layout_->addButton, &QToolButton::clicked, this, &CVMainWindowController::onAdd);
  connect(layout_->batchButton, &QToolButton::clicked, this, &CVMainWindowController::onBatch);
  connect(layout_->warningButton, &QToolButton::clicked, this,
          &CVMainWindowController::showWarnings);
  connect(layout_->dragView, &CVDragView::dragHoverChanged, layout_->dropZoneImageView,
          &ui::DropZoneView::setDragHovering);
  for (QTimer* timer : {heightTimer_, controlsTimer_})
    timer->setSingleShot(true);
  connect(heightTimer_, &QTimer::timeout, this, &CVMainWindowController::applyHeight);
  connect(controlsTimer_, &QTimer::timeout, this,
          &CVMainWindowController::applyBottomControlsState);
  connect(heightAnimation_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& height) { resize(width(), height.toInt()); });
}

void CVMainWindowController::initializeMainWindow() {
  updateBottomControlsState();
  setting(&CVDefaultPreferences::theme) == u"dark"_s ? setDarkTheme() : setLightTheme();
  if (services_.table) {
    services_.table->setTableView(layout_->tableView);
    services_.table->setDelegate(services_.delegate);
  }
  setSpin(false);
  setStateText({});
  layout_->dragView->setDelegate(std::make_shared<ui::DragDelegate>(services_.delegate));
  setDragEnabled(true);
  updateAddButton();
  showEmptyState(true);
  resize(usualWidth, contentHeightForRows(0) + titleBarHeight());
  bringToFront();
  centralWidget()->setFocus();  // no control is marked before the keyboard is used
}

/// The rule by which releases of the system have a touch bar.
void CVMainWindowController::initializeTouchBar() {
  const auto utils = CVObjectRepository::singleton().getUtils();
  if (!utils) return;
  const CVOSXVersion version = utils->getOSXVersion();
  const auto minor = version.minorVersion();
  const bool has =
      version.majorVersion() >= 10 && ((minor >= 12 && version.patchVersion() >= 2) || minor == 13);
  if (!has) return;
  layout_->quickActions->makeItems(
      {u"com.maplebrook.corvalis.safari"_s, u"com.maplebrook.corvalis.chrome"_s},
      [this](const QString& identifier) {
        identifier.endsWith(u"safari"_s) ? captureFromSafari() : captureFromChrome();
      });
  orderFocus();
}

/// The keyboard goes from the queue to the bar and along it.
void CVMainWindowController::orderFocus() {
  QList<QPointer<QWidget>> order{layout_->addButton};
  for (QWidget* action : layout_->quickActions->findChildren<QWidget*>())
    order += action;
  order << layout_->warningButton << layout_->batchButton;
  for (qsizetype control = 1; control < order.size(); ++control) {
    setTabOrder(order[control - 1], order[control]);
  }
  layout_->tableView->setNextInTabOrder(order);
}

void CVMainWindowController::startAnimatingArrow() {
  layout_->arrowImageView->show();
  arrow_.startAnimatingArrow();
  if (motionIsReduced()) arrow_.stopAnimatingArrow();
}

void CVMainWindowController::stopAnimatingArrow() {
  arrow_.stopAnimatingArrow();
}

/// The lines have always named the opposite of what the arrow does, and those who read logs know
/// them so.
void CVMainWindowController::setSpin(bool spin) {
  logLine(spin ? u"Start spinning..."_s : u"Stop spinning..."_s);
  setBusyLook(spin);
  spin ? stopAnimatingArrow() : startAnimatingArrow();
}

void CVMainWindowController::setBusyLook(bool busy) {
  layout_->quickActions->setVisible(!busy && layout_->quickActions->hasItems());
  layout_->busyIndicator->setVisible(busy);
  layout_->busyIndicator->setIndeterminate(busy);
  layout_->dropLabel->setEnabled(!busy);
  layout_->dropLabel->setText(busy ? tr("Dropping is off while Corvalis works")
                                   : tr("Drop web addresses or files here"));
}

void CVMainWindowController::setStateText(const QString& text) {
  layout_->stateLabel->setFullText(text);
}

void CVMainWindowController::setDragEnabled(bool enabled) {
  layout_->dragView->setDragEnabled(enabled);
}

void CVMainWindowController::showEmptyState(bool empty) {
  layout_->hintLabel->setVisible(empty);
}

bool CVMainWindowController::motionIsReduced() const {
  return services_.looks && services_.looks->motion() == desktop::Motion::Reduced;
}

void CVMainWindowController::playSnapEffect() {
  if (services_.sounds) services_.sounds->play(u"click.aiff"_s);
  if (!motionIsReduced()) ui::flash(*centralWidget());
}

void CVMainWindowController::showWarningButton() {
  if (!services_.delegate) return;
  const auto count = services_.delegate->warnings().size();
  layout_->warningButton->setText(QString::number(count));
  layout_->warningButton->setAccessibleName(tr("Warnings: %1").arg(count));
  layout_->warningButton->show();
  updateMenus();
}

void CVMainWindowController::setLightTheme() {
  showTheme(Theme::light());
}

void CVMainWindowController::setDarkTheme() {
  showTheme(Theme::dark());
}

void CVMainWindowController::showTheme(const Theme& theme) {
  ui::applyTheme(theme);
  layout_->addButton->setIcon(imageForAddButton());
  layout_->batchButton->setIcon(ui::namedIcon(themedIconName(u"settings"_s, false)));
  layout_->warningButton->setIcon(ui::glyphIcon(u"warning"_s, theme.failed));
  QPalette quiet = layout_->hintLabel->palette();
  quiet.setColor(QPalette::WindowText, theme.secondaryText);
  for (QWidget* label :
       {static_cast<QWidget*>(layout_->hintLabel), static_cast<QWidget*>(layout_->stateLabel)}) {
    label->setPalette(quiet);
  }
  if (services_.table) services_.table->updateTheme();
  update();
}

QString CVMainWindowController::themedIconName(const QString& glyph, bool active) const {
  const bool dark = setting(&CVDefaultPreferences::theme) == u"dark"_s;
  return u"icon-%1-%2-%3@2x.png"_s.arg(glyph, active ? u"active"_s : u"inactive"_s,
                                       dark ? u"dark"_s : u"light"_s);
}

QIcon CVMainWindowController::imageForAddButton() const {
  const auto behaviour = setting(&CVDefaultPreferences::addButtonBehaviour);
  if (behaviour == u"safari"_s) return ui::namedIcon(u"safari.png"_s);
  if (behaviour == u"chrome"_s) return ui::namedIcon(u"chrome.png"_s);
  return ui::namedIcon(themedIconName(u"add"_s, false));
}

void CVMainWindowController::updateAddButton() {
  layout_->addButton->setIcon(imageForAddButton());
}

void CVMainWindowController::bringToFront() {
  if (isMinimized()) showNormal();
  show();
  raise();
  activateWindow();
}

void CVMainWindowController::beginSavePanel(
    const QString& name, const std::optional<QUrl>& folder,
    std::function<void(std::optional<QUrl> chosen)> completion) {
  // What the program's commands save by way of its window are PDFs.
  ui::beginSavePanel(this, name, QStringLiteral("pdf"), folder, std::move(completion));
}

void CVMainWindowController::closeEvent(QCloseEvent* event) {
  event->accept();
  if (services_.delegate) services_.delegate->windowWillClose();
}
