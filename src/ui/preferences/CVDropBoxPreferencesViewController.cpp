#include "ui/preferences/CVDropBoxPreferencesViewController.h"

#include "settings/CVDefaultPreferences.h"
#include "ui_CVDropBoxPreferencesViewController.h"

CVDropBoxPreferencesViewController::CVDropBoxPreferencesViewController(QWidget* parent)
    : QWidget(parent), layout_(std::make_unique<Ui::CVDropBoxPreferencesViewController>()) {
  layout_->setupUi(this);
  connect(layout_->linkButton, &QPushButton::clicked, this,
          &CVDropBoxPreferencesViewController::onLink);
}

CVDropBoxPreferencesViewController::~CVDropBoxPreferencesViewController() = default;

void CVDropBoxPreferencesViewController::setupWithPreferences(
    std::shared_ptr<CVDefaultPreferences> preferences) {
  preferences_ = std::move(preferences);
  setup();
}

void CVDropBoxPreferencesViewController::setup() {
  const bool linked = preferences_ && preferences_->dropboxLinked();
  layout_->explanation->setText(
      linked
          ? tr("Your Dropbox account is linked: DropBox is among the destinations. Corvalis keeps "
               "to its own folder there.")
          : tr("Link your Dropbox account to choose DropBox as a destination. Corvalis keeps to "
               "its own folder there."));
  layout_->linkButton->setText(linked ? tr("Unlink from DropBox") : tr("Link to DropBox"));
}

void CVDropBoxPreferencesViewController::onLink() {
  const bool linked = preferences_ && preferences_->dropboxLinked();
  const auto& act = linked ? account_.unlink : account_.authorize;
  if (act) act();
  if (parentWindow_) parentWindow_->close();
}

void CVDropBoxPreferencesViewController::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  setup();
}
