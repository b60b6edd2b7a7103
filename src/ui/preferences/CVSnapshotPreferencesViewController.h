#pragma once

#include <QHash>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

class CVPreferences;
class QToolButton;
namespace Ui {
class CVSnapshotPreferencesViewController;
}

/// The pane of the choices that decide how a page is converted and where it goes: on the
/// application settings in the preferences window, on one entry's own record as an accessory of the
/// save sheet. What is shown and what can be used always follows from the settings. Main thread.
class CVSnapshotPreferencesViewController : public QWidget {
  Q_OBJECT

 public:
  explicit CVSnapshotPreferencesViewController(QWidget* parent = nullptr);
  ~CVSnapshotPreferencesViewController() override;

  void setPreferences(std::shared_ptr<CVPreferences> preferences);
  void setParentWindow(QWidget* window);
  /// Called when the height of the pane has changed; never in the accessory use.
  void setResizeBlock(std::function<void()> block) { resizeBlock_ = std::move(block); }
  void setAsAccessoryView(bool accessory) { asAccessoryView_ = accessory; }
  /// Called when the format may have changed.
  void setFormatChanged(std::function<void()> changed) { formatChanged_ = std::move(changed); }

  void setupWithPreferences();

  static QStringList listOrientations();
  /// 0 or 1; every other value ends the program.
  static QString orientationToString(std::int64_t orientation);
  static std::int64_t stringToOrientation(const QString& name);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void makeFormatButtons();
  void connectControls();
  void onFormat(const QString& format);
  void onMarginEditingEnded();
  void onHeaderFooterFont();
  void highlightButton(const QString& format);
  void setupConversion();
  void setupDestinations();
  void setupOrientations();
  void setupPaginationOff();
  void setupPaginationOn();
  void enablePagination(bool enabled);
  void enableNotesTextView(bool enabled);
  void placePaginationSettings(bool present);
  bool dropboxLinked() const;

  std::unique_ptr<Ui::CVSnapshotPreferencesViewController> layout_;
  QHash<QString, QToolButton*> buttonDictionary_;
  std::shared_ptr<CVPreferences> preferences_;
  QPointer<QWidget> parentWindow_;
  std::function<void()> resizeBlock_;
  std::function<void()> formatChanged_;
  bool asAccessoryView_ = false;
};
