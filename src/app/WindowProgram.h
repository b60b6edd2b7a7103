#pragma once

#include <QStringList>
#include <memory>

#include "capture/CVCaptureServices.h"
#include "intake/CVAppDelegate.h"
#include "platform/base/Error.h"
#include "platform/desktop/ApplicationService.h"

class CVEntryTableController;
class CVMainWindowController;
class CVMiniBrowserWindow;
class CVOkAlert;
class CVSaveSheet;
namespace browsers {
class AddOnDoor;
}
namespace desktop {
class FileManager;
class SoundPlayer;
}  // namespace desktop

/// The program with windows: it makes the parts, joins them, and ends them in order. Main thread;
/// ends before the application object.
class WindowProgram : private desktop::ApplicationReceiver {
 public:
  WindowProgram();
  ~WindowProgram() override;

  /// Becomes the one running instance; false when a running one took the requests.
  Result<bool> becomeTheInstance(const QStringList& requests);

  /// Opens the main window and handles the requests.
  void open(const QStringList& requests, const QString& action = {});

 private:
  void activate(const QVariantMap& platformData) override;
  void open(const QStringList& addresses, const QVariantMap& platformData) override;
  void activateAction(const QString& name, const QVariantList& parameters,
                      const QVariantMap& platformData) override;

  CVCaptureServices captureServices() const;
  CVAppDelegate::Services delegateServices() const;
  void makeWindow();
  void showMiniBrowser();

  const std::shared_ptr<desktop::FileManager> fileManager_;
  const std::shared_ptr<desktop::SoundPlayer> sounds_;
  const std::shared_ptr<web::Engine> engine_;
  const std::shared_ptr<browsers::AddOnDoor> addOnDoor_;
  const std::shared_ptr<CVSaveSheet> savePanel_;
  const std::shared_ptr<CVOkAlert> alerts_;
  const std::shared_ptr<CVAppDelegate> delegate_;
  std::unique_ptr<desktop::ApplicationService> service_;
  std::shared_ptr<CVEntryTableController> table_;
  std::shared_ptr<CVMiniBrowserWindow> miniBrowser_;
  std::unique_ptr<CVMainWindowController> window_;
};
