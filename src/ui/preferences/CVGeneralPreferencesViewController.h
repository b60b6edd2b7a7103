#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>

class CVDefaultPreferences;
class QCheckBox;
namespace Ui {
class CVGeneralPreferencesViewController;
}

/// The pane of the application-wide options. It keeps no copy: every change is stored at once. Main
/// thread.
class CVGeneralPreferencesViewController : public QWidget {
  Q_OBJECT

 public:
  explicit CVGeneralPreferencesViewController(QWidget* parent = nullptr);
  ~CVGeneralPreferencesViewController() override;

  /// Fills every control from the settings, and edits these from then on.
  void setupWithPreferences(std::shared_ptr<CVDefaultPreferences> preferences);

  /// The window on which the folder panel is a sheet. Not owned.
  void setParentWindow(QWidget* window);

 private:
  void connectCheckBoxes();
  void connectNumbers();
  void connectChoices();
  void fillCheckBoxes();
  void fillNumbers();
  void fillChoices();
  void onMaximumNumberOfConcurrentDownloadsEditingChanged();
  void onQueueSizeEditingChanged();
  void onDefaultSnapshotWidthEditingChanged();
  void onChangeDefaultDownloadLocation();
  void onRevertToFactoryDefaults();

  std::unique_ptr<Ui::CVGeneralPreferencesViewController> layout_;
  std::shared_ptr<CVDefaultPreferences> preferences_;
  QPointer<QWidget> parentWindow_;
};
