#include "ui/preferences/CVPreferencesViewController.h"

#include <QEvent>
#include <QPointer>

#include "settings/CVDefaultPreferences.h"
#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"
#include "ui/preferences/CVGeneralPreferencesViewController.h"
#include "ui/preferences/CVSnapshotPreferencesViewController.h"
#include "ui/preferences/PreferencesPane.h"
#include "ui_CVPreferencesViewController.h"

using namespace Qt::StringLiterals;

namespace {

/// Points: the room of the tab buttons.
constexpr int tabsHeight = 64;

}  // namespace

CVPreferencesViewController::CVPreferencesViewController(
    std::shared_ptr<CVPreferences> preferences, QWidget* parentWindow,
    CVDropBoxPreferencesViewController::Account account, QWidget* parent)
    : QWidget(parent),
      layout_(std::make_unique<Ui::CVPreferencesViewController>()),
      preferences_(std::move(preferences)),
      parentWindow_(parentWindow),
      account_(std::move(account)) {
  layout_->setupUi(this);
  controllerButtons_ = {layout_->generalButton, layout_->snapshotButton, layout_->dropboxButton};
  for (int index = 0; index < controllerButtons_.size(); ++index) {
    connect(controllerButtons_[index], &QToolButton::clicked, this,
            [this, index] { display(Pane(index)); });
  }
  setTabIcons();
  setupWithPreferences();
}

CVPreferencesViewController::~CVPreferencesViewController() = default;

bool CVPreferencesViewController::asAccessoryView() const {
  return !std::dynamic_pointer_cast<CVDefaultPreferences>(preferences_);
}

void CVPreferencesViewController::setupWithPreferences() {
  const auto settings = std::dynamic_pointer_cast<CVDefaultPreferences>(preferences_);
  auto* general = new CVGeneralPreferencesViewController(this);
  auto* snapshot = new CVSnapshotPreferencesViewController(this);
  auto* dropbox = new CVDropBoxPreferencesViewController(this);
  viewControllers_ = {general, snapshot, dropbox};
  general->setParentWindow(parentWindow_);
  general->setupWithPreferences(settings);
  snapshot->setParentWindow(parentWindow_);
  snapshot->setAsAccessoryView(asAccessoryView());
  snapshot->setPreferences(preferences_);
  snapshot->setResizeBlock([self = QPointer(this)] {
    if (self && self->displayed_ == Pane::Snapshot) self->displayAtIndex(int(Pane::Snapshot));
  });
  dropbox->setParentWindow(parentWindow_);
  dropbox->setAccount(account_);
  dropbox->setupWithPreferences(settings);
  // An entry's own record has none of the application-wide options.
  layout_->generalButton->setVisible(!asAccessoryView());
  layout_->dropboxButton->setVisible(!asAccessoryView());
  display(asAccessoryView() ? Pane::Snapshot : Pane::General);
}

void CVPreferencesViewController::display(Pane pane) {
  displayed_ = pane;
  highlightButton(pane);
  displayAtIndex(int(pane));
}

void CVPreferencesViewController::highlightButton(Pane pane) {
  for (int index = 0; index < controllerButtons_.size(); ++index) {
    controllerButtons_[index]->setChecked(index == int(pane));
  }
}

void CVPreferencesViewController::displayAtIndex(int index) {
  for (QWidget* pane : viewControllers_)
    pane->setVisible(pane == viewControllers_[index]);
  QWidget& pane = *viewControllers_[index];
  pane.resize(qMax(width(), pane.minimumWidth()), pane.height());
  ui::fitHeight(pane);
  if (asAccessoryView()) {
    pane.move(0, height() / 2 - pane.height() / 2 + tabsHeight / 2);
    return;
  }
  pane.move(0, tabsHeight);
  resize(pane.width(), pane.height() + tabsHeight);
  layout_->tabs->resize(width(), tabsHeight);
  if (resizeBlock_) resizeBlock_();
}

void CVPreferencesViewController::setTabIcons() {
  const QString glyphs[] = {u"general"_s, u"snapshot"_s, u"dropbox"_s};
  for (int index = 0; index < controllerButtons_.size(); ++index) {
    controllerButtons_[index]->setIcon(
        ui::glyphIcon(glyphs[index], ui::Theme::current().secondaryText));
  }
}

/// The theme may be changed in this very window.
void CVPreferencesViewController::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && !controllerButtons_.isEmpty()) setTabIcons();
}
