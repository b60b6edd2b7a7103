#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "ui/preferences/CVDropBoxPreferencesViewController.h"

class CVGeneralPreferencesViewController;
class CVPreferences;
class CVSnapshotPreferencesViewController;
class QToolButton;
namespace Ui {
class CVPreferencesViewController;
}

/// The pane switcher: three tab buttons and below them one of three panes. On a plain record it is
/// an accessory view, which keeps its size. Main thread.
class CVPreferencesViewController : public QWidget {
  Q_OBJECT

 public:
  enum class Pane { General, Snapshot, Dropbox };

  CVPreferencesViewController(std::shared_ptr<CVPreferences> preferences, QWidget* parentWindow,
                              CVDropBoxPreferencesViewController::Account account = {},
                              QWidget* parent = nullptr);
  ~CVPreferencesViewController() override;

  /// Called when the switcher has changed its height.
  void setResizeBlock(std::function<void()> block) { resizeBlock_ = std::move(block); }
  bool asAccessoryView() const;

  void display(Pane pane);
  Pane displayed() const { return displayed_; }

 private:
  void setupWithPreferences();
  void highlightButton(Pane pane);
  void setTabIcons();
  void displayAtIndex(int index);
  void changeEvent(QEvent* event) override;

  std::unique_ptr<Ui::CVPreferencesViewController> layout_;
  std::shared_ptr<CVPreferences> preferences_;
  QWidget* parentWindow_;
  CVDropBoxPreferencesViewController::Account account_;
  QList<QToolButton*> controllerButtons_;
  QList<QWidget*> viewControllers_;
  std::function<void()> resizeBlock_;
  Pane displayed_ = Pane::General;
};
