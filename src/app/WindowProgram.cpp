#include "app/WindowProgram.h"

#include <QStandardPaths>
#include <QTimer>

#include "app/ActivationToken.h"
#include "app/DropboxRedirects.h"
#include "app/GeneralPasteboard.h"
#include "app/PlatformServices.h"
#include "capture/CVURLEntry.h"
#include "delivery/PDFMultipageAssembler.h"
#include "platform/base/Log.h"
#include "platform/browsers/AddOnDoor.h"
#include "platform/desktop/BrowserOpener.h"
#include "platform/desktop/ColorSchemePreference.h"
#include "platform/desktop/FileManager.h"
#include "platform/desktop/Notifications.h"
#include "platform/desktop/SoundPlayer.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/ClientsManager.h"
#include "platform/web/Engine.h"
#include "settings/CVObjectRepository.h"
#include "ui/minibrowser/CVMiniBrowserWindow.h"
#include "ui/panels/QtPrintPanel.h"
#include "ui/preferences/CVSaveSheet.h"
#include "ui/queue/CVEntryTableController.h"
#include "ui/window/CVMainWindowController.h"
#include "ui/window/CVOkAlert.h"

using namespace Qt::StringLiterals;

namespace {

/// Where cookies and logins outlive the program.
web::EngineOptions engineOptions() {
  web::EngineOptions options;
  options.profileFolder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                          u"/corvalis/browser"_s;
  return options;
}

bool isDropboxLinked() {
  const auto& manager = dropbox::ClientsManager::shared();
  return manager.authorizedClient() || manager.authorizedTeamClient();
}

CVDropBoxPreferencesViewController::Account dropboxAccount(
    const std::shared_ptr<desktop::BrowserOpener>& browser) {
  auto& manager = dropbox::ClientsManager::shared();
  return {[&manager, browser] {
            manager.authorizeFromControllerDesktop(
                [browser](const QUrl& address) { browser->open(address); });
          },
          [&manager] { manager.unlinkAndResetClients(); }};
}

}  // namespace

WindowProgram::WindowProgram()
    : fileManager_(desktop::FileManager::create()),
      sounds_(desktop::SoundPlayer::create()),
      engine_(web::Engine::shared(engineOptions())),
      addOnDoor_(browsers::AddOnDoor::create()),
      savePanel_(std::make_shared<CVSaveSheet>()),
      alerts_(std::make_shared<CVOkAlert>()),
      delegate_(CVAppDelegate::create(delegateServices())) {}

WindowProgram::~WindowProgram() {
  // What comes from now on is for the next start of the program.
  service_.reset();
  printing::PrintPanel::setShared(nullptr);
  // Without it no waiting page begins when the running ones fail with their engine.
  CVObjectRepository::singleton().addObject(nullptr, u"entryTaskManager"_s);
  miniBrowser_.reset();
  window_.reset();
  engine_->shutdown();
  dropbox::ClientsManager::shared().close();
  dispatch::finish();
}

Result<bool> WindowProgram::becomeTheInstance(const QStringList& requests) {
  auto service = desktop::claimOrHandOver(requests, *this, ActivationToken::ofThisStart());
  if (!service) return tl::unexpected(service.error());
  service_ = std::move(*service);
  if (!service_) return false;
  // The add-on's door is the one instance's alone.
  if (const MaybeError closed = addOnDoor_->listen()) logLine(closed->localizedDescription);
  return true;
}

void WindowProgram::open(const QStringList& requests, const QString& action) {
  table_ = CVEntryTableController::create(
      {desktop::Notifications::create(fileManager_, sounds_), sounds_});
  delegate_->setTableViewController(table_);
  delegate_->applicationWillFinishLaunching();
  makeWindow();
  delegate_->open(requests, {});
  QTimer::singleShot(0, window_.get(), [this, action] {
    delegate_->doFinishApplicationLaunch();
    CVObjectRepository::singleton().getPreferences()->setDropboxLinkedProvider(isDropboxLinked);
    if (!action.isEmpty()) delegate_->activateAction(action, {}, {});
  });
}

void WindowProgram::makeWindow() {
  CVMainWindowController::Services services;
  services.delegate = delegate_;
  services.table = table_;
  services.sounds = sounds_;
  services.looks = desktop::ColorSchemePreference::create();
  services.browser = desktop::BrowserOpener::create();
  services.dropboxAccount = dropboxAccount(services.browser);
  services.feedbackPage = QUrl(QStringLiteral(CORVALIS_FEEDBACK_PAGE));
  services.homePage = QUrl(QStringLiteral(CORVALIS_HOME_PAGE));
  services.showMiniBrowser = [this] { showMiniBrowser(); };
  window_ = std::make_unique<CVMainWindowController>(services);
  savePanel_->setMainWindow(window_.get());
  alerts_->setMainWindow(window_.get());
  printing::PrintPanel::setShared(std::make_shared<QtPrintPanel>(window_.get()));
}

void WindowProgram::showMiniBrowser() {
  if (!miniBrowser_) {
    miniBrowser_ = CVMiniBrowserWindow::create(engine_);
    miniBrowser_->setDelegate(delegate_);
  }
  miniBrowser_->makeKeyAndOrderFront();
}

CVCaptureServices WindowProgram::captureServices() const {
  CVCaptureServices services;
  services.engine = engine_;
  services.savePanel = savePanel_;
  services.makeMiniBrowser = [engine = engine_] { return CVMiniBrowserWindow::create(engine); };
  services.selectFile = [manager = fileManager_](const QString& path) { manager->reveal(path); };
  return services;
}

CVAppDelegate::Services WindowProgram::delegateServices() const {
  CVAppDelegate::Services services;
  services.makeEntry = [capture = captureServices()](
                           const QUrl& url, const std::optional<QString>& source,
                           bool forceJavascript, const QSizeF& forceSize) {
    return std::make_shared<CVURLEntry>(capture, url, source, forceJavascript, forceSize);
  };
  services.userDefaults = defaults::UserDefaults::standard();
  services.utils = makePlatformServices(addOnDoor_);
  services.utils.alerts = alerts_;
  services.redirectHandler = std::make_shared<DropboxRedirects>();
  services.pasteboard = std::make_shared<GeneralPasteboard>();
  services.multipageAssembler = std::make_shared<PDFMultipageAssembler>();
  return services;
}

void WindowProgram::activate(const QVariantMap& platformData) {
  ActivationToken::take(platformData);
  delegate_->activate(platformData);
}

void WindowProgram::open(const QStringList& addresses, const QVariantMap& platformData) {
  ActivationToken::take(platformData);
  delegate_->open(addresses, platformData);
}

void WindowProgram::activateAction(const QString& name, const QVariantList& parameters,
                                   const QVariantMap& platformData) {
  ActivationToken::take(platformData);
  delegate_->activateAction(name, parameters, platformData);
}
