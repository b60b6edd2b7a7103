#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QUrl>
#include <functional>
#include <memory>

#include "intake/CVMainWindow.h"
#include "ui/popovers/Popover.h"
#include "ui/preferences/CVPreferencesWindowController.h"
#include "ui/window/ArrowAnimation.h"
#include "ui/window/BatchState.h"

class CVAppDelegate;
class CVEntryTableController;
class HelpWindow;
class QTimer;
class QToolButton;
class QVariantAnimation;
namespace Ui {
class CVMainWindowController;
}
namespace desktop {
class ColorSchemePreference;
class SoundPlayer;
}  // namespace desktop

namespace desktop {
class BrowserOpener;
}
namespace ui {
struct Theme;
}  // namespace ui

/// The main window: the queue, below it the drop zone, below that the bar with the add button, the
/// state, the warnings and the batch button. It stands in the delegate's window pointer from its
/// construction to its end. Main thread.
class CVMainWindowController : public QMainWindow, public CVMainWindow {
  Q_OBJECT

 public:
  /// A missing service leaves out what it does.
  struct Services {
    std::shared_ptr<CVAppDelegate> delegate;
    std::shared_ptr<CVEntryTableController> table;
    std::shared_ptr<desktop::SoundPlayer> sounds;
    /// Tells whether motion is to be reduced.
    std::shared_ptr<desktop::ColorSchemePreference> looks;
    CVDropBoxPreferencesViewController::Account dropboxAccount;
    std::function<void()> showMiniBrowser;
    /// For the maker's pages. An address that this build does not know has no menu entry.
    std::shared_ptr<desktop::BrowserOpener> browser;
    QUrl feedbackPage;
    QUrl homePage;
  };

  explicit CVMainWindowController(Services services);
  ~CVMainWindowController() override;

  void initializeMainWindow() override;
  void initializeTouchBar() override;
  void startAnimatingArrow() override;
  void stopAnimatingArrow();

  void setSpin(bool spin) override;
  void setStateText(const QString& text) override;
  void setDragEnabled(bool enabled) override;

  void playSnapEffect() override;
  void showWarningButton() override;
  void setLightTheme() override;
  void setDarkTheme() override;
  void updateAddButton() override;

  void resizeWindow() override;
  void updateBottomControlsState() override;

  void closeAddPopover() override;
  void closeBatchPopover() override;
  void bringToFront() override;
  void beginSavePanel(const QString& name, const std::optional<QUrl>& folder,
                      std::function<void(std::optional<QUrl> chosen)> completion) override;

  void onShowPreferences();
  void onShowHelp();
  void onFeedback();
  void onMaplebrook();
  void onAdd();
  void onBatch();
  void showWarnings();

  const ui::BatchState& batchState() const { return batchState_; }
  CVPreferencesWindowController* preferencesWindow() const { return preferencesWindow_; }
  ui::Popover* addPopover() const { return addPopover_; }
  ui::Popover* batchPopover() const { return batchPopover_; }
  ui::Popover* warningPopover() const { return warningPopover_; }

  /// Points: the drop zone, the bar, and the rows that the queue is to show.
  int contentHeightForRows(int rows) const;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void connectControls();
  void nameControls();
  void setTextFonts();
  void orderFocus();
  void showTheme(const ui::Theme& theme);
  QIcon imageForAddButton() const;
  QString themedIconName(const QString& glyph, bool active) const;
  bool motionIsReduced() const;
  void setBusyLook(bool busy);
  void showEmptyState(bool empty);

  // What follows the queue (CVMainWindowController+Queue.cpp)
  void applyHeight();
  void applyBottomControlsState();
  int rowsToShow() const;
  int titleBarHeight() const;
  void moveToHeight(int height);

  // Popovers (CVMainWindowController+Popovers.cpp)
  ui::Popover* openPopover(QWidget* content, QWidget& anchor);
  void popoverDidClose();

  // Menus and quick actions (CVMainWindowController+Menus.cpp)
  void createMenus();
  void createCaptureMenu();
  void createQueueMenu();
  void createHelpMenu();
  void captureFromSafari();
  void captureFromChrome();
  void openFiles();
  void updateMenus();

  const Services services_;
  std::unique_ptr<Ui::CVMainWindowController> layout_;
  ui::ArrowAnimation arrow_;
  ui::BatchState batchState_;
  QPointer<CVPreferencesWindowController> preferencesWindow_;
  QPointer<HelpWindow> helpWindow_;
  QPointer<ui::Popover> addPopover_;
  QPointer<ui::Popover> batchPopover_;
  QPointer<ui::Popover> warningPopover_;
  /// Many calls at once cost one resize and one look at the entries.
  QTimer* heightTimer_;
  QTimer* controlsTimer_;
  QVariantAnimation* heightAnimation_;
  struct QueueActions;
  std::unique_ptr<QueueActions> queueActions_;
};
