#include "app/WindowCommand.h"

#include <QApplication>
#include <QTimer>
#include <cstdio>

#include "app/Diagnostics.h"
#include "app/DropboxRedirects.h"
#include "app/GeneralPasteboard.h"
#include "app/Interruption.h"
#include "app/PlatformServices.h"
#include "capture/CVURLEntry.h"
#include "delivery/PDFMultipageAssembler.h"
#include "intake/CVAppDelegate.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/desktop/BrowserOpener.h"
#include "platform/desktop/ColorSchemePreference.h"
#include "platform/desktop/FileManager.h"
#include "platform/desktop/Notifications.h"
#include "platform/desktop/SoundPlayer.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/ClientsManager.h"
#include "platform/web/Engine.h"
#include "ui/queue/CVEntryTableController.h"
#include "ui/window/CVMainWindowController.h"

using namespace Qt::StringLiterals;

namespace {

/// The door hands on what comes from other programs.
class DoorToDelegate : public desktop::ApplicationReceiver {
 public:
  explicit DoorToDelegate(CVAppDelegate& delegate) : delegate_(delegate) {}

  void activate(const QVariantMap& platformData) override { delegate_.activate(platformData); }
  void open(const QStringList& addresses, const QVariantMap& platformData) override {
    delegate_.open(addresses, platformData);
  }
  void activateAction(const QString& name, const QVariantList& parameters,
                      const QVariantMap& platformData) override {
    delegate_.activateAction(name, parameters, platformData);
  }

 private:
  CVAppDelegate& delegate_;
};

/// What the windows are made of. Ends before the application object.
class WindowProgram {
 public:
  WindowProgram()
      : fileManager_(desktop::FileManager::create()),
        sounds_(desktop::SoundPlayer::create()),
        engine_(web::Engine::shared()),
        delegate_(CVAppDelegate::create(delegateServices())),
        door_(*delegate_) {}

  ~WindowProgram() {
    window_.reset();
    engine_->shutdown();
    dropbox::ClientsManager::shared().close();
    dispatch::finish();
  }

  /// False when a running window took the requests.
  Result<bool> becomeTheInstance(const QStringList& requests) {
    auto service = desktop::claimOrHandOver(requests, door_);
    if (!service) return tl::unexpected(service.error());
    service_ = std::move(*service);
    return service_ != nullptr;
  }

  void open(const QStringList& requests) {
    delegate_->setTableViewController(makeTable());
    delegate_->applicationWillFinishLaunching();
    window_ = std::make_unique<CVMainWindowController>(windowServices());
    delegate_->open(requests, {});
    QTimer::singleShot(0, window_.get(), [this] { delegate_->doFinishApplicationLaunch(); });
  }

 private:
  CVCaptureServices captureServices() const {
    CVCaptureServices services;
    services.engine = engine_;
    services.selectFile = [manager = fileManager_](const QString& path) { manager->reveal(path); };
    return services;
  }

  CVAppDelegate::Services delegateServices() const {
    CVAppDelegate::Services services;
    services.makeEntry = [capture = captureServices()](
                             const QUrl& url, const std::optional<QString>& source,
                             bool forceJavascript, const QSizeF& forceSize) {
      return std::make_shared<CVURLEntry>(capture, url, source, forceJavascript, forceSize);
    };
    services.userDefaults = defaults::UserDefaults::standard();
    services.utils = makePlatformServices();
    services.redirectHandler = std::make_shared<DropboxRedirects>();
    services.pasteboard = std::make_shared<GeneralPasteboard>();
    services.multipageAssembler = std::make_shared<PDFMultipageAssembler>();
    return services;
  }

  std::shared_ptr<CVEntryTableController> makeTable() {
    table_ = CVEntryTableController::create(
        {desktop::Notifications::create(fileManager_, sounds_), sounds_});
    return table_;
  }

  CVMainWindowController::Services windowServices() {
    CVMainWindowController::Services services;
    services.delegate = delegate_;
    services.table = table_;
    services.sounds = sounds_;
    services.browser = desktop::BrowserOpener::create();
    services.looks = desktop::ColorSchemePreference::create();
    return services;
  }

  const std::shared_ptr<desktop::FileManager> fileManager_;
  const std::shared_ptr<desktop::SoundPlayer> sounds_;
  const std::shared_ptr<web::Engine> engine_;
  const std::shared_ptr<CVAppDelegate> delegate_;
  std::shared_ptr<CVEntryTableController> table_;
  DoorToDelegate door_;
  std::unique_ptr<desktop::ApplicationService> service_;
  std::unique_ptr<CVMainWindowController> window_;
};

bool hasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int fail(const QString& reason) {
  std::fprintf(stderr, "corvalis: %s\n", qPrintable(reason));
  return 1;
}

}  // namespace

int runWindowCommand(int& argc, char** argv, const QStringList& requests) {
  if (!hasDisplay()) return fail(u"There is no display to open a window on."_s);
  installDiagnostics(Verbosity::Verbose);
  QGuiApplication::setDesktopFileName(QString::fromUtf16(desktop::applicationIdentifier));
  QApplication application(argc, argv);
  dispatch::initialize();
  onInterruption([](int) { QCoreApplication::quit(); });
  WindowProgram program;
  const auto first = program.becomeTheInstance(requests);
  if (!first) return fail(first.error().localizedDescription);
  if (!*first) return 0;
  program.open(requests);
  return QApplication::exec();
}
