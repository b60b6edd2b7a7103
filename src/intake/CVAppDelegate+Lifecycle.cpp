#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <algorithm>

#include "intake/CVAppDelegate.h"
#include "intake/LinkDetector.h"
#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

bool hasPDFExtension(const QUrl& file) {
  return QFileInfo(file.toLocalFile()).suffix() == u"pdf"_s;
}

}  // namespace

void CVAppDelegate::applicationWillFinishLaunching() {
  if (services_.redirectHandler) services_.redirectHandler->setupDropBox();
}

void CVAppDelegate::doFinishApplicationLaunch() {
  isForeground_ = true;
  observeApplicationState();
  initializeObjectRepository();
  if (window_) {
    window_->initializeMainWindow();
    window_->initializeTouchBar();
    window_->startAnimatingArrow();
  }
  announceLaunched();
}

void CVAppDelegate::observeApplicationState() {
  if (!qGuiApp) return;
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, qGuiApp,
                   [weak = weak_from_this()](Qt::ApplicationState state) {
                     const auto self = weak.lock();
                     if (!self) return;
                     if (state == Qt::ApplicationActive) return self->onForeground();
                     self->onBackground();
                   });
  // Long work on other threads must not hold up the end of the program.
  QObject::connect(qGuiApp, &QCoreApplication::aboutToQuit, qGuiApp, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->endWaits();
  });
}

void CVAppDelegate::endWaits() {
  isEnding_ = true;
  entriesChanged_.notify_all();
}

void CVAppDelegate::initializeObjectRepository() {
  CVObjectRepository& repository = CVObjectRepository::singleton();
  const auto utils = std::make_shared<CVUtils>(services_.utils);
  utils->setAppDelegate(weak_from_this());
  repository.addObject(utils, u"utils"_s);
  repository.addObject(CVEntryTaskManager::create(), u"entryTaskManager"_s);
  const auto preferences = std::make_shared<CVDefaultPreferences>(services_.userDefaults);
  preferences->load();
  preferences->setObserver(std::static_pointer_cast<CVAppDelegate>(shared_from_this()));
  repository.addObject(preferences, u"preferences"_s);
  if (const MaybeError unread = services_.userDefaults->openingError())
    addWarning(unread->localizedDescription);
  utils->deleteDownloadsDirectory();
}

void CVAppDelegate::announceLaunched() {
  std::vector<std::function<void()>> waiting;
  {
    std::lock_guard lock(mutex_);
    launched_ = true;
    waiting.swap(waitingForLaunch_);
  }
  for (auto& work : waiting)
    dispatch::globalAsync(dispatch::Priority::Default, std::move(work));
}

void CVAppDelegate::windowWillClose() {
  if (services_.terminate) return services_.terminate();
  QCoreApplication::quit();
}

bool CVAppDelegate::applicationShouldHandleReopen(bool) {
  withMainWindow([](CVMainWindow& window) { window.bringToFront(); });
  return true;
}

bool CVAppDelegate::userNotificationCenterShouldPresentNotification() const {
  return true;
}

void CVAppDelegate::onForeground() {
  isForeground_ = true;
}

void CVAppDelegate::onBackground() {
  isForeground_ = false;
}

void CVAppDelegate::dragViewFilesWereDropped(const QStringList& paths) {
  logLine(u"Dragged files"_s);
  QList<QUrl> files;
  for (const QString& path : paths) {
    if (!QFileInfo(path).isDir()) files.append(QUrl::fromLocalFile(path));
  }
  if (files.size() > 1 && std::all_of(files.begin(), files.end(), hasPDFExtension)) {
    return performPDFMergingForURLs(files);
  }
  snapEffect();
  processURLs(files);
}

void CVAppDelegate::dragViewStringWasDragged(const QString& text) {
  snapEffect();
  scrapURLsFromText(text);
}

void CVAppDelegate::onPasteURL() {
  processPasteboard();
  snapEffect();
}

bool CVAppDelegate::processPasteboard() {
  withMainWindow([](CVMainWindow& window) { window.closeAddPopover(); });
  if (!services_.pasteboard) return false;
  const QStringList texts = services_.pasteboard->plainTexts();
  for (const QString& text : texts)
    scrapURLsFromText(text);
  const QList<QUrl> files = services_.pasteboard->fileURLs();
  if (!files.isEmpty()) processURLs(files);
  return !texts.isEmpty() || !files.isEmpty();
}

void CVAppDelegate::scrapURLsFromText(const QString& text) {
  dispatch::globalAsync(dispatch::Priority::Default, [self = shared_from_this(), text] {
    self->processURLs(LinkDetector::linksIn(text));
  });
}
