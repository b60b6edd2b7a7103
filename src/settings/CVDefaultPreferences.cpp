#include "settings/CVDefaultPreferences.h"

#include "platform/base/UserFolders.h"
#include "settings/SettingsTable.h"

using namespace Qt::StringLiterals;

CVDefaultPreferences::CVDefaultPreferences(std::shared_ptr<defaults::UserDefaults> store)
    : defaults_(std::move(store)) {
  CVDefaultPreferences::initDefaults();
}

void CVDefaultPreferences::setObserver(std::weak_ptr<CVDefaultPreferencesObserver> observer) {
  observer_ = std::move(observer);
}

void CVDefaultPreferences::setDropboxLinkedProvider(std::function<bool()> provider) {
  dropboxLinkedProvider_ = std::move(provider);
}

void CVDefaultPreferences::initDefaults() {
  setLoading(true);
  CVPreferences::initDefaults();
  setDownloadLocation(userDesktopFolder());
  SettingsTable::applyDefaults(*this);
  setLoading(false);
}

void CVDefaultPreferences::save() {
  if (loading()) return;
  SettingsTable::write(*this, *defaults_);
  const MaybeError error = defaults_->synchronize();
  if (!error) return;
  if (auto observer = observer_.lock()) observer->settingsCouldNotBeSaved(*error);
}

void CVDefaultPreferences::load() {
  if (!SettingsTable::isSaved(*defaults_)) return;
  setLoading(true);
  SettingsTable::readInto(*this, *defaults_);
  setLoading(false);
}

bool CVDefaultPreferences::processAutomatically() const {
  return read(processAutomatically_);
}

void CVDefaultPreferences::setProcessAutomatically(bool automatic) {
  storeAndSave(processAutomatically_, automatic);
}

bool CVDefaultPreferences::automaticallyRemoveFromQueueOncePrinted() const {
  return read(automaticallyRemoveFromQueueOncePrinted_);
}

void CVDefaultPreferences::setAutomaticallyRemoveFromQueueOncePrinted(bool remove) {
  storeAndSave(automaticallyRemoveFromQueueOncePrinted_, remove);
}

bool CVDefaultPreferences::prependTitleWithWebsiteDomain() const {
  return read(prependTitleWithWebsiteDomain_);
}

void CVDefaultPreferences::setPrependTitleWithWebsiteDomain(bool prepend) {
  storeAndSave(prependTitleWithWebsiteDomain_, prepend);
}

bool CVDefaultPreferences::loading() const {
  return loading_;
}

void CVDefaultPreferences::setLoading(bool loading) {
  loading_ = loading;
}

bool CVDefaultPreferences::systemNotifications() const {
  return read(systemNotifications_);
}

void CVDefaultPreferences::setSystemNotifications(bool notify) {
  storeAndSave(systemNotifications_, notify);
}

bool CVDefaultPreferences::snapEffect() const {
  return read(snapEffect_);
}

void CVDefaultPreferences::setSnapEffect(bool play) {
  storeAndSave(snapEffect_, play);
}

bool CVDefaultPreferences::batchMode() const {
  return read(batchMode_);
}

void CVDefaultPreferences::setBatchMode(bool batch) {
  store(batchMode_, batch);
  if (!loading()) {
    store(processAutomatically_, batch);
    store(snapEffect_, !batch);
    store(systemNotifications_, !batch);
    store(automaticallyRemoveFromQueueOncePrinted_, batch);
  }
  save();
}

bool CVDefaultPreferences::enableIFrames() const {
  return read(enableIFrames_);
}

void CVDefaultPreferences::setEnableIFrames(bool enable) {
  storeAndSave(enableIFrames_, enable);
}

std::uint64_t CVDefaultPreferences::maximumNumberOfConcurrentDonwloads() const {
  return read(maximumNumberOfConcurrentDonwloads_);
}

void CVDefaultPreferences::setMaximumNumberOfConcurrentDonwloads(std::uint64_t count) {
  storeAndSave(maximumNumberOfConcurrentDonwloads_, count);
}

std::uint64_t CVDefaultPreferences::queueSize() const {
  return read(queueSize_);
}

void CVDefaultPreferences::setQueueSize(std::uint64_t rows) {
  storeAndSave(queueSize_, rows);
}

std::optional<QString> CVDefaultPreferences::theme() const {
  return read(theme_);
}

void CVDefaultPreferences::setTheme(std::optional<QString> theme) {
  const bool dark = theme == u"dark"_s;
  storeAndSave(theme_, std::move(theme));
  const auto observer = observer_.lock();
  if (!observer) return;
  if (dark) {
    observer->setDarkTheme();
  } else {
    observer->setLightTheme();
  }
}

std::uint64_t CVDefaultPreferences::defaultSnapshotWidth() const {
  return read(defaultSnapshotWidth_);
}

void CVDefaultPreferences::setDefaultSnapshotWidth(std::uint64_t width) {
  storeAndSave(defaultSnapshotWidth_, width);
}

std::optional<QString> CVDefaultPreferences::addButtonBehaviour() const {
  return read(addButtonBehaviour_);
}

void CVDefaultPreferences::setAddButtonBehaviour(std::optional<QString> behaviour) {
  store(addButtonBehaviour_, std::move(behaviour));
  if (auto observer = observer_.lock()) observer->updateAddButton();
  save();
}

bool CVDefaultPreferences::dropboxLinked() const {
  return dropboxLinkedProvider_ && dropboxLinkedProvider_();
}

void CVDefaultPreferences::setUsePagination(bool paginate) {
  CVPreferences::setUsePagination(paginate);
  save();
}

void CVDefaultPreferences::setIncludeHeadersAndFooters(bool include) {
  CVPreferences::setIncludeHeadersAndFooters(include);
  save();
}

void CVDefaultPreferences::setRiskyConversion(bool risky) {
  CVPreferences::setRiskyConversion(risky);
  save();
}

void CVDefaultPreferences::setCompression(float factor) {
  CVPreferences::setCompression(factor);
  save();
}

void CVDefaultPreferences::setFormat(std::optional<QString> format) {
  CVPreferences::setFormat(std::move(format));
  save();
}

void CVDefaultPreferences::setMargin(std::uint64_t points) {
  CVPreferences::setMargin(points);
  save();
}

void CVDefaultPreferences::setHeaderAndFooterFont(std::optional<Font> font) {
  CVPreferences::setHeaderAndFooterFont(std::move(font));
  save();
}

void CVDefaultPreferences::setNotes(std::optional<QString> notes) {
  CVPreferences::setNotes(std::move(notes));
  save();
}

void CVDefaultPreferences::setDownloadLocation(std::optional<QUrl> location) {
  CVPreferences::setDownloadLocation(std::move(location));
  save();
}

void CVDefaultPreferences::setDestination(std::optional<QString> destination) {
  CVPreferences::setDestination(std::move(destination));
  save();
}

void CVDefaultPreferences::setOrientation(std::int64_t orientation) {
  CVPreferences::setOrientation(orientation);
  save();
}

void CVDefaultPreferences::setConversionMode(std::optional<QString> mode) {
  CVPreferences::setConversionMode(std::move(mode));
  save();
}
