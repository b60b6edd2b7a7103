#pragma once

#include <atomic>
#include <memory>

#include "platform/base/Error.h"
#include "platform/defaults/UserDefaults.h"
#include "settings/CVPreferences.h"

/// Who applies a changed setting to the windows. Called on the thread that changed it.
class CVDefaultPreferencesObserver {
 public:
  virtual ~CVDefaultPreferencesObserver() = default;
  virtual void setDarkTheme() = 0;
  virtual void setLightTheme() = 0;
  virtual void updateAddButton() = 0;
  virtual void settingsCouldNotBeSaved(const Error& error) = 0;
};

/// The application's live settings: a snapshot record and the application-wide options. Every
/// setter of a persisted field writes the whole set to the user defaults at once; there is no apply
/// step. Changed on the main thread, read on every thread.
class CVDefaultPreferences : public CVPreferences {
 public:
  explicit CVDefaultPreferences(std::shared_ptr<defaults::UserDefaults> store);

  /// Held weakly.
  void setObserver(std::weak_ptr<CVDefaultPreferencesObserver> observer);

  /// Asked each time `dropboxLinked` is; nothing is linked while there is none.
  void setDropboxLinkedProvider(std::function<bool()> provider);

  void initDefaults() override;

  /// Writes every key and synchronises the store; nothing while `loading`.
  void save();

  /// Reads a full set back, if one was ever saved. Values that cannot be read become none, 0 or the
  /// default.
  void load();

  bool processAutomatically() const;
  void setProcessAutomatically(bool automatic);

  bool automaticallyRemoveFromQueueOncePrinted() const;
  void setAutomaticallyRemoveFromQueueOncePrinted(bool remove);

  bool prependTitleWithWebsiteDomain() const;
  void setPrependTitleWithWebsiteDomain(bool prepend);

  bool loading() const;
  void setLoading(bool loading);

  bool systemNotifications() const;
  void setSystemNotifications(bool notify);

  bool snapEffect() const;
  void setSnapEffect(bool play);

  bool batchMode() const;
  /// Unless `loading`, also sets the four options that batch work wants, and saves once.
  void setBatchMode(bool batch);

  bool enableIFrames() const;
  void setEnableIFrames(bool enable);

  /// Shown and stored; no scheduling uses it.
  std::uint64_t maximumNumberOfConcurrentDonwloads() const;
  void setMaximumNumberOfConcurrentDonwloads(std::uint64_t count);

  /// Rows that the main window sizes itself for.
  std::uint64_t queueSize() const;
  void setQueueSize(std::uint64_t rows);

  /// "light" or "dark".
  std::optional<QString> theme() const;
  void setTheme(std::optional<QString> theme);

  /// Points.
  std::uint64_t defaultSnapshotWidth() const;
  void setDefaultSnapshotWidth(std::uint64_t width);

  /// "show choices", "safari" or "chrome".
  std::optional<QString> addButtonBehaviour() const;
  void setAddButtonBehaviour(std::optional<QString> behaviour);

  bool dropboxLinked() const;

  void setUsePagination(bool paginate) override;
  void setIncludeHeadersAndFooters(bool include) override;
  void setRiskyConversion(bool risky) override;
  void setCompression(float factor) override;
  void setFormat(std::optional<QString> format) override;
  void setMargin(std::uint64_t points) override;
  void setHeaderAndFooterFont(std::optional<Font> font) override;
  void setNotes(std::optional<QString> notes) override;
  void setDownloadLocation(std::optional<QUrl> location) override;
  void setDestination(std::optional<QString> destination) override;
  void setOrientation(std::int64_t orientation) override;
  void setConversionMode(std::optional<QString> mode) override;

 private:
  friend class SettingsTable;

  template <class Value>
  void storeAndSave(Value& field, Value value) {
    store(field, std::move(value));
    save();
  }

  std::shared_ptr<defaults::UserDefaults> defaults_;
  std::weak_ptr<CVDefaultPreferencesObserver> observer_;
  std::function<bool()> dropboxLinkedProvider_;
  std::atomic<bool> loading_ = false;
  bool processAutomatically_ = false;
  bool automaticallyRemoveFromQueueOncePrinted_ = false;
  bool prependTitleWithWebsiteDomain_ = false;
  bool systemNotifications_ = true;
  bool snapEffect_ = true;
  bool batchMode_ = false;
  bool enableIFrames_ = true;
  std::uint64_t maximumNumberOfConcurrentDonwloads_ = 0;
  std::uint64_t queueSize_ = 0;
  std::optional<QString> theme_;
  std::uint64_t defaultSnapshotWidth_ = 0;
  std::optional<QString> addButtonBehaviour_;
};
