#include "ui/preferences/CVGeneralPreferencesViewController.h"

#include <QFileDialog>

#include "settings/CVDefaultPreferences.h"
#include "ui/preferences/PreferencesPane.h"
#include "ui_CVGeneralPreferencesViewController.h"

namespace {

using Layout = Ui::CVGeneralPreferencesViewController;
using Settings = CVDefaultPreferences;

enum class InBatchMode { Free, Locked };

struct Option {
  QCheckBox* Layout::*button;
  bool (Settings::*get)() const;
  void (Settings::*set)(bool);
  InBatchMode inBatchMode;
};

const Option options[] = {
    {&Layout::processAutomaticallyButton, &Settings::processAutomatically,
     &Settings::setProcessAutomatically, InBatchMode::Locked},
    {&Layout::automaticallyRemoveButton, &Settings::automaticallyRemoveFromQueueOncePrinted,
     &Settings::setAutomaticallyRemoveFromQueueOncePrinted, InBatchMode::Locked},
    {&Layout::snapEffectButton, &Settings::snapEffect, &Settings::setSnapEffect,
     InBatchMode::Locked},
    {&Layout::systemNotificationsButton, &Settings::systemNotifications,
     &Settings::setSystemNotifications, InBatchMode::Locked},
    {&Layout::prependTitleButton, &Settings::prependTitleWithWebsiteDomain,
     &Settings::setPrependTitleWithWebsiteDomain, InBatchMode::Free},
    {&Layout::disableIFramesButton, &Settings::enableIFrames, &Settings::setEnableIFrames,
     InBatchMode::Free},
    {&Layout::batchModeButton, &Settings::batchMode, &Settings::setBatchMode, InBatchMode::Free},
};

/// Where the entered number is not allowed, the field shows the one that is stored instead.
void showIfReplaced(QLineEdit& field, qint64 entered, qint64 stored) {
  if (entered != stored) field.setText(QString::number(stored));
}

}  // namespace

CVGeneralPreferencesViewController::CVGeneralPreferencesViewController(QWidget* parent)
    : QWidget(parent), layout_(std::make_unique<Layout>()) {
  layout_->setupUi(this);
  layout_->batchHelp->setForegroundRole(QPalette::PlaceholderText);
  connectCheckBoxes();
  connectNumbers();
  connectChoices();
}

CVGeneralPreferencesViewController::~CVGeneralPreferencesViewController() = default;

void CVGeneralPreferencesViewController::setParentWindow(QWidget* window) {
  parentWindow_ = window;
}

void CVGeneralPreferencesViewController::connectCheckBoxes() {
  for (const Option& option : options) {
    connect((*layout_).*option.button, &QCheckBox::clicked, this, [this, &option](bool checked) {
      if (!preferences_) return;
      ((*preferences_).*option.set)(checked);
      if (option.button == &Layout::batchModeButton) setupWithPreferences(preferences_);
    });
  }
}

void CVGeneralPreferencesViewController::connectNumbers() {
  const auto edited = [this](QLineEdit* field,
                             void (CVGeneralPreferencesViewController::*handle)()) {
    connect(field, &QLineEdit::editingFinished, this, [this, field, handle] {
      if (preferences_ && field->isModified()) (this->*handle)();
      field->setModified(false);
    });
  };
  using Pane = CVGeneralPreferencesViewController;
  edited(layout_->maximumNumberOfDownloadsTextField,
         &Pane::onMaximumNumberOfConcurrentDownloadsEditingChanged);
  edited(layout_->queueSizeTextField, &Pane::onQueueSizeEditingChanged);
  edited(layout_->defaultSnapshotWidthTextField, &Pane::onDefaultSnapshotWidthEditingChanged);
}

void CVGeneralPreferencesViewController::connectChoices() {
  connect(layout_->themePopupButton, &QComboBox::textActivated, this, [this](const QString& title) {
    if (!preferences_) return;
    preferences_->setTheme(title.toLower());
    setupWithPreferences(preferences_);
  });
  connect(layout_->addButtonBehaviourPopupButton, &QComboBox::textActivated, this,
          [this](const QString& title) {
            if (preferences_) preferences_->setAddButtonBehaviour(title.toLower());
          });
  connect(layout_->changeLocationButton, &QPushButton::clicked, this,
          &CVGeneralPreferencesViewController::onChangeDefaultDownloadLocation);
  connect(layout_->revertButton, &QPushButton::clicked, this,
          &CVGeneralPreferencesViewController::onRevertToFactoryDefaults);
}

void CVGeneralPreferencesViewController::setupWithPreferences(
    std::shared_ptr<CVDefaultPreferences> preferences) {
  preferences_ = std::move(preferences);
  if (!preferences_) return;
  fillCheckBoxes();
  fillNumbers();
  fillChoices();
}

void CVGeneralPreferencesViewController::fillCheckBoxes() {
  const bool batch = preferences_->batchMode();
  for (const Option& option : options) {
    QCheckBox& button = *((*layout_).*option.button);
    button.setChecked(((*preferences_).*option.get)());
    button.setEnabled(!batch || option.inBatchMode == InBatchMode::Free);
  }
}

void CVGeneralPreferencesViewController::fillNumbers() {
  layout_->maximumNumberOfDownloadsTextField->setText(
      QString::number(preferences_->maximumNumberOfConcurrentDonwloads()));
  layout_->queueSizeTextField->setText(QString::number(preferences_->queueSize()));
  layout_->defaultSnapshotWidthTextField->setText(
      QString::number(preferences_->defaultSnapshotWidth()));
}

void CVGeneralPreferencesViewController::fillChoices() {
  const auto folder = preferences_->downloadLocation();
  layout_->defaultDownloadLocationLabel->setFullText(folder ? folder->toLocalFile() : QString());
  layout_->themePopupButton->setCurrentIndex(preferences_->theme() == QStringLiteral("dark") ? 1
                                                                                             : 0);
  QComboBox& behaviours = *layout_->addButtonBehaviourPopupButton;
  const int index = behaviours.findText(preferences_->addButtonBehaviour().value_or(QString()),
                                        Qt::MatchFixedString);
  if (index >= 0) behaviours.setCurrentIndex(index);
}

void CVGeneralPreferencesViewController::onMaximumNumberOfConcurrentDownloadsEditingChanged() {
  QLineEdit& field = *layout_->maximumNumberOfDownloadsTextField;
  const qint64 entered = ui::integerValue(field.text());
  const qint64 stored = entered < 1 ? 1 : entered;
  preferences_->setMaximumNumberOfConcurrentDonwloads(std::uint64_t(stored));
  showIfReplaced(field, entered, stored);
}

void CVGeneralPreferencesViewController::onQueueSizeEditingChanged() {
  QLineEdit& field = *layout_->queueSizeTextField;
  const qint64 entered = ui::integerValue(field.text());
  const qint64 stored = entered < 1 ? 3 : entered;
  preferences_->setQueueSize(std::uint64_t(stored));
  showIfReplaced(field, entered, stored);
}

void CVGeneralPreferencesViewController::onDefaultSnapshotWidthEditingChanged() {
  QLineEdit& field = *layout_->defaultSnapshotWidthTextField;
  const qint64 entered = ui::integerValue(field.text());
  const qint64 stored = entered == 0 ? 1024 : entered;
  preferences_->setDefaultSnapshotWidth(std::uint64_t(stored));
  showIfReplaced(field, entered, stored);
}

void CVGeneralPreferencesViewController::onChangeDefaultDownloadLocation() {
  if (!preferences_) return;
  auto* panel = new QFileDialog(parentWindow_ ? parentWindow_.data() : window(), tr("Folder"));
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setWindowModality(Qt::WindowModal);
  panel->setFileMode(QFileDialog::Directory);
  panel->setOption(QFileDialog::ShowDirsOnly);
  panel->setLabelText(QFileDialog::Accept, tr("Choose"));
  if (const auto folder = preferences_->downloadLocation()) panel->setDirectoryUrl(*folder);
  connect(panel, &QFileDialog::urlSelected, this, [this](const QUrl& chosen) {
    preferences_->setDownloadLocation(chosen);
    fillChoices();
  });
  panel->open();
}

void CVGeneralPreferencesViewController::onRevertToFactoryDefaults() {
  if (!preferences_) return;
  preferences_->initDefaults();
  preferences_->save();
  setupWithPreferences(preferences_);
}
