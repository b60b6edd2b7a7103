#include "ui/preferences/CVSnapshotPreferencesViewController.h"

#include <QFontDialog>

#include "platform/base/Log.h"
#include "platform/fonts/FontName.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "ui/preferences/PreferencesPane.h"
#include "ui_CVSnapshotPreferencesViewController.h"

using namespace Qt::StringLiterals;

namespace {

/// Steps of the slider from its least to its best end.
constexpr double sliderSteps = 1000;

void refill(QComboBox& menu, const QStringList& items, const QString& selected) {
  menu.clear();
  menu.addItems(items);
  menu.setCurrentIndex(items.indexOf(selected));
}

}  // namespace

CVSnapshotPreferencesViewController::CVSnapshotPreferencesViewController(QWidget* parent)
    : QWidget(parent), layout_(std::make_unique<Ui::CVSnapshotPreferencesViewController>()) {
  layout_->setupUi(this);
  makeFormatButtons();
  connectControls();
}

CVSnapshotPreferencesViewController::~CVSnapshotPreferencesViewController() = default;

void CVSnapshotPreferencesViewController::setPreferences(
    std::shared_ptr<CVPreferences> preferences) {
  preferences_ = std::move(preferences);
  setupWithPreferences();
}

void CVSnapshotPreferencesViewController::setParentWindow(QWidget* window) {
  parentWindow_ = window;
}

void CVSnapshotPreferencesViewController::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  setupWithPreferences();
}

void CVSnapshotPreferencesViewController::makeFormatButtons() {
  buttonDictionary_ = {{u"PDF"_s, layout_->pdfButton},   {u"PNG"_s, layout_->pngButton},
                       {u"JPEG"_s, layout_->jpegButton}, {u"JP2"_s, layout_->jp2Button},
                       {u"GIF"_s, layout_->gifButton},   {u"BMP"_s, layout_->bmpButton},
                       {u"TIFF"_s, layout_->tiffButton}};
  for (auto [format, button] : buttonDictionary_.asKeyValueRange()) {
    connect(button, &QToolButton::clicked, this, [this, name = format] { onFormat(name); });
  }
}

void CVSnapshotPreferencesViewController::connectControls() {
  const auto thenSetUp = [this](auto store) {
    return [this, store](auto value) {
      if (!preferences_) return;
      store(*preferences_, value);
      setupWithPreferences();
      if (formatChanged_) formatChanged_();
    };
  };
  const auto only = [this](auto store) {
    return [this, store](auto value) {
      if (preferences_) store(*preferences_, value);
    };
  };
  using Settings = CVPreferences;
  connect(layout_->usePaginationButton, &QCheckBox::clicked, this,
          thenSetUp([](Settings& settings, bool on) { settings.setUsePagination(on); }));
  connect(
      layout_->destinationButton, &QComboBox::textActivated, this,
      thenSetUp([](Settings& settings, const QString& title) { settings.setDestination(title); }));
  connect(layout_->includeHeadersAndFootersButton, &QCheckBox::clicked, this,
          only([](Settings& settings, bool on) { settings.setIncludeHeadersAndFooters(on); }));
  connect(layout_->orientationPopUpButton, &QComboBox::textActivated, this,
          only([](Settings& settings, const QString& title) {
            settings.setOrientation(stringToOrientation(title));
          }));
  connect(
      layout_->conversionModePopUpButton, &QComboBox::textActivated, this,
      only([](Settings& settings, const QString& title) { settings.setConversionMode(title); }));
  connect(layout_->compressionSlider, &QSlider::sliderMoved, this,
          only([](Settings& settings, int step) {
            settings.setCompression(float(1.0 - step / sliderSteps));
          }));
  connect(layout_->compressionSlider, &QSlider::actionTriggered, this, [this](int) {
    if (!preferences_) return;
    const int step = layout_->compressionSlider->sliderPosition();
    preferences_->setCompression(float(1.0 - step / sliderSteps));
  });
  connect(layout_->notesTextView, &QPlainTextEdit::textChanged, this, [this] {
    // The pane empties the field itself where there are no pages to print notes on.
    if (preferences_ && !layout_->notesTextView->isReadOnly()) {
      preferences_->setNotes(layout_->notesTextView->toPlainText());
    }
  });
  connect(layout_->marginTextField, &QLineEdit::editingFinished, this,
          &CVSnapshotPreferencesViewController::onMarginEditingEnded);
  connect(layout_->headersAndFootersFontButton, &QPushButton::clicked, this,
          &CVSnapshotPreferencesViewController::onHeaderFooterFont);
}

void CVSnapshotPreferencesViewController::onFormat(const QString& format) {
  if (!preferences_) return;
  preferences_->setFormat(format);
  highlightButton(format);
  setupWithPreferences();
  if (formatChanged_) formatChanged_();
}

void CVSnapshotPreferencesViewController::onMarginEditingEnded() {
  if (!preferences_ || !layout_->marginTextField->isModified()) return;
  layout_->marginTextField->setModified(false);
  const qint64 margin = qMax<qint64>(0, ui::integerValue(layout_->marginTextField->text()));
  preferences_->setMargin(std::uint64_t(margin));
  layout_->marginTextField->setText(QString::number(margin));
}

void CVSnapshotPreferencesViewController::onHeaderFooterFont() {
  if (!preferences_) return;
  auto* panel = new QFontDialog(parentWindow_ ? parentWindow_.data() : window());
  panel->setAttribute(Qt::WA_DeleteOnClose);
  if (const auto font = preferences_->headerAndFooterFont()) {
    panel->setCurrentFont(fonts::fontNamed({font->name, qMax(1.0, font->pointSize)}));
  }
  connect(panel, &QFontDialog::fontSelected, this, [this](const QFont& font) {
    preferences_->setHeaderAndFooterFont(Font{fonts::nameOf(font), font.pointSizeF()});
    setupWithPreferences();
  });
  panel->open();
}

void CVSnapshotPreferencesViewController::highlightButton(const QString& format) {
  for (auto [name, button] : buttonDictionary_.asKeyValueRange()) {
    button->setChecked(name == format);
  }
}

void CVSnapshotPreferencesViewController::setupWithPreferences() {
  if (!preferences_) return;
  const auto destination = preferences_->destination();
  layout_->usePaginationButton->setEnabled(destination != u"Printer"_s);
  highlightButton(preferences_->format().value_or(QString()));
  setupConversion();
  setupDestinations();
  setupOrientations();
  layout_->usePaginationButton->setChecked(preferences_->usePagination());
  preferences_->usePagination() ? setupPaginationOn() : setupPaginationOff();
}

void CVSnapshotPreferencesViewController::setupConversion() {
  const auto format = preferences_->format();
  const bool compresses = format == u"JPEG"_s || format == u"JP2"_s;
  const bool hasModes = format == u"PDF"_s && preferences_->destination() != u"Printer"_s;
  const bool changed = compresses == layout_->compressionSlider->isHidden() ||
                       hasModes == layout_->conversionModePopUpButton->isHidden();
  for (QWidget* part : {static_cast<QWidget*>(layout_->compressionSlider), layout_->compressionView,
                        static_cast<QWidget*>(layout_->compressionLabel),
                        static_cast<QWidget*>(layout_->leastTextField),
                        static_cast<QWidget*>(layout_->bestTextField)}) {
    part->setVisible(compresses);
  }
  layout_->conversionModeTextField->setVisible(hasModes);
  layout_->conversionModePopUpButton->setVisible(hasModes);
  refill(*layout_->conversionModePopUpButton, CVPreferences::getConversionModes(),
         preferences_->conversionMode().value_or(QString()));
  layout_->compressionSlider->setValue(
      qRound((1.0 - double(preferences_->compression())) * sliderSteps));
  ui::fitHeight(*this);
  if (changed && !asAccessoryView_ && resizeBlock_) resizeBlock_();
}

void CVSnapshotPreferencesViewController::setupDestinations() {
  QStringList destinations = CVPreferences::getDestinations();
  if (!preferences_->usePagination()) destinations.removeAll(u"Printer"_s);
  if (!dropboxLinked()) destinations.removeAll(u"DropBox"_s);
  refill(*layout_->destinationButton, destinations,
         preferences_->destination().value_or(QString()));
}

bool CVSnapshotPreferencesViewController::dropboxLinked() const {
  const auto settings = CVObjectRepository::singleton().getPreferences();
  return settings && settings->dropboxLinked();
}

void CVSnapshotPreferencesViewController::setupOrientations() {
  if (preferences_->usePagination()) {
    refill(*layout_->orientationPopUpButton, listOrientations(),
           orientationToString(preferences_->orientation()));
  } else {
    layout_->orientationPopUpButton->clear();
  }
}

void CVSnapshotPreferencesViewController::enablePagination(bool enabled) {
  layout_->marginTextField->setEnabled(enabled);
  layout_->includeHeadersAndFootersButton->setEnabled(enabled);
  layout_->headersAndFootersFontButton->setEnabled(enabled);
  enableNotesTextView(enabled);
}

void CVSnapshotPreferencesViewController::enableNotesTextView(bool enabled) {
  QPlainTextEdit& notes = *layout_->notesTextView;
  notes.setReadOnly(!enabled);
  notes.setTextInteractionFlags(enabled ? Qt::TextEditorInteraction : Qt::NoTextInteraction);
  notes.setEnabled(enabled);
}

void CVSnapshotPreferencesViewController::setupPaginationOff() {
  enablePagination(false);
  layout_->marginTextField->setText(u"0"_s);
  layout_->includeHeadersAndFootersButton->setChecked(false);
  layout_->headersAndFootersFontButton->setText(tr("Not Available"));
  layout_->notesTextView->clear();
  placePaginationSettings(false);
}

void CVSnapshotPreferencesViewController::setupPaginationOn() {
  enablePagination(true);
  layout_->marginTextField->setText(QString::number(preferences_->margin()));
  layout_->includeHeadersAndFootersButton->setChecked(preferences_->includeHeadersAndFooters());
  const Font font = preferences_->headerAndFooterFont().value_or(Font{});
  layout_->headersAndFootersFontButton->setText(
      u"%1, %2 pt"_s.arg(font.name, QString::number(font.pointSize, 'f', 0)));
  QFont small = layout_->headersAndFootersFontButton->font();
  small.setPointSize(10);
  layout_->headersAndFootersFontButton->setFont(small);
  const QString notes = preferences_->notes().value_or(QString());
  if (layout_->notesTextView->toPlainText() != notes) layout_->notesTextView->setPlainText(notes);
  placePaginationSettings(true);
}

/// In the window the settings of pages come and go with their height; in the save sheet, which has
/// one size, they stay and cannot be used.
void CVSnapshotPreferencesViewController::placePaginationSettings(bool present) {
  QWidget& settings = *layout_->paginationSettinsView;
  settings.setEnabled(present);
  const bool shown = present || asAccessoryView_;
  const bool changed = shown == settings.isHidden();
  settings.setVisible(shown);
  if (!changed) return;
  ui::fitHeight(*this);
  if (!asAccessoryView_ && resizeBlock_) resizeBlock_();
}

QStringList CVSnapshotPreferencesViewController::listOrientations() {
  return {u"Portrait"_s, u"Landscape"_s};
}

QString CVSnapshotPreferencesViewController::orientationToString(std::int64_t orientation) {
  if (orientation != 0 && orientation != 1) {
    logLine(u"Unknown orientation"_s);
    std::abort();
  }
  return listOrientations().at(orientation);
}

std::int64_t CVSnapshotPreferencesViewController::stringToOrientation(const QString& name) {
  return name.compare(u"Landscape"_s, Qt::CaseInsensitive) == 0 ? 1 : 0;
}
