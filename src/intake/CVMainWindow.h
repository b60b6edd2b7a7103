#pragma once

#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

/// The main window as the application delegate sees it. Every operation is called on the main
/// thread, and only between `setMainWindow` with the window and `setMainWindow` with none.
class CVMainWindow {
 public:
  virtual ~CVMainWindow() = default;

  // --- Start-up, in this order ---

  /// Background, theme, drop zone, add button and first size; ends with the window in front.
  virtual void initializeMainWindow() = 0;
  /// The strip of quick actions that stands in for the touch bar.
  virtual void initializeTouchBar() = 0;
  virtual void startAnimatingArrow() = 0;

  // --- Busy state ---

  virtual void setSpin(bool spin) = 0;
  /// The text of the status label; empty when nothing is going on. May be a very long address.
  virtual void setStateText(const QString& text) = 0;
  /// Whether the drop zone accepts drags.
  virtual void setDragEnabled(bool enabled) = 0;

  // --- Effects and appearance ---

  /// Plays the click and the white flash. The caller has already looked at the setting.
  virtual void playSnapEffect() = 0;
  virtual void showWarningButton() = 0;
  virtual void setLightTheme() = 0;
  virtual void setDarkTheme() = 0;
  virtual void updateAddButton() = 0;

  // --- What follows the queue ---

  /// Fits the height to the number of entries.
  virtual void resizeWindow() = 0;
  /// Shows, hides and enables the batch commands by the states of the entries.
  virtual void updateBottomControlsState() = 0;

  // --- Popovers and panels; closing one that is not open does nothing ---

  virtual void closeAddPopover() = 0;
  virtual void closeBatchPopover() = 0;

  /// Raises the program with all its windows and gives the main window the keyboard.
  virtual void bringToFront() = 0;

  /// Asks for a file to save to, as a sheet: the extension is hidden, folders can be made.
  /// `completion` comes once, on the main thread, with none when the user cancels; the address has
  /// no extension appended.
  virtual void beginSavePanel(const QString& name, const std::optional<QUrl>& folder,
                              std::function<void(std::optional<QUrl> chosen)> completion) = 0;
};
