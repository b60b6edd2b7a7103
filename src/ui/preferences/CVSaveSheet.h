#pragma once

#include <QPointer>
#include <QWidget>

#include "capture/CVCaptureServices.h"

/// The save sheet of an entry: name and folder above, below them the snapshot pane on the entry's
/// own record. Main thread.
class CVSaveSheet : public CVSavePanel {
 public:
  /// The window that sheets are shown on. Not owned.
  void setMainWindow(QWidget* window) { mainWindow_ = window; }

  void beginSheet(const std::shared_ptr<CVPreferences>& preferences, const QString& name,
                  const std::optional<QUrl>& folder,
                  std::function<void(std::optional<QUrl> chosen)> completion) override;

 private:
  QPointer<QWidget> mainWindow_;
};
