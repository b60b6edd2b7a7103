#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QMutex>
#include <QThread>
#include <algorithm>
#include <semaphore>

#include "Requests.h"
#include "intake/CVAppDelegate.h"
#include "platform/browsers/FrontPage.h"
#include "platform/desktop/RunningApplications.h"
#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntry.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVObjectRepository.h"
#include "support/Wait.h"

namespace delegate_test {

using namespace Qt::StringLiterals;

/// Everything the program logs, while it exists.
class LoggedLines {
 public:
  LoggedLines() {
    lines().clear();
    previous_ =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& line) {
          QMutexLocker lock(&mutex());
          lines().append(line);
        });
  }
  ~LoggedLines() { qInstallMessageHandler(previous_); }
  QStringList all() const {
    QMutexLocker lock(&mutex());
    return lines();
  }

 private:
  static QMutex& mutex() {
    static QMutex instance;
    return instance;
  }
  static QStringList& lines() {
    static QStringList instance;
    return instance;
  }
  QtMessageHandler previous_;
};

class RecordingWindow : public CVMainWindow {
 public:
  void initializeMainWindow() override { calls << u"initializeMainWindow"_s; }
  void initializeTouchBar() override { calls << u"initializeTouchBar"_s; }
  void startAnimatingArrow() override { calls << u"startAnimatingArrow"_s; }
  void setSpin(bool spin) override { spins = spin; }
  void setStateText(const QString& text) override { states << text; }
  void setDragEnabled(bool enabled) override { dragEnabled = enabled; }
  void playSnapEffect() override { ++snaps; }
  void showWarningButton() override { warns = true; }
  void setLightTheme() override { calls << u"light"_s; }
  void setDarkTheme() override { calls << u"dark"_s; }
  void updateAddButton() override { calls << u"updateAddButton"_s; }
  void resizeWindow() override { calls << u"resizeWindow"_s; }
  void updateBottomControlsState() override { calls << u"updateBottomControlsState"_s; }
  void closeAddPopover() override { calls << u"closeAddPopover"_s; }
  void closeBatchPopover() override { calls << u"closeBatchPopover"_s; }
  void bringToFront() override { calls << u"bringToFront"_s; }
  void beginSavePanel(const QString& name, const std::optional<QUrl>&,
                      std::function<void(std::optional<QUrl>)> completion) override {
    calls << u"savePanel "_s + name;
    completion(chosen);
  }

  bool isIdle() const {
    return !spins && dragEnabled && (states.isEmpty() || states.last().isEmpty());
  }

  QStringList calls, states;
  bool spins = false, dragEnabled = true, warns = false;
  int snaps = 0;
  std::optional<QUrl> chosen;
};

/// An entry whose steps end at once.
class TestEntry : public CVEntry {
 public:
  TestEntry(const QUrl& url, const std::optional<QString>& source, bool javascript,
            const QSizeF& size)
      : CVEntry(url, source), document(source), forceJavascript(javascript), forceSize(size) {}

  void processWithCompletion(Completion completion) override {
    ++processed;
    completion(shared_from_this(), std::nullopt);
  }
  std::optional<QUrl> createTemporaryPDFWithConversionMode(const QString& mode,
                                                           MaybeError&) override {
    requestedMode = mode;
    return pdf;
  }

  const std::optional<QString> document;
  const bool forceJavascript;
  const QSizeF forceSize;
  std::atomic<int> processed = 0;
  QString requestedMode;
  std::optional<QUrl> pdf;
};

class RecordingTable : public CVEntryTable {
 public:
  void addEntry(const std::shared_ptr<CVEntry>& entry) override {
    QMutexLocker lock(&mutex_);
    entries_.push_back(entry);
  }
  void removeEntry(const std::shared_ptr<CVEntry>& entry) override {
    QMutexLocker lock(&mutex_);
    std::erase(entries_, entry);
  }
  std::vector<std::shared_ptr<CVEntry>> getEntries() const override {
    QMutexLocker lock(&mutex_);
    return entries_;
  }
  void clearAll() override { cleared << u"all"_s; }
  void clearCompleted() override { cleared << u"completed"_s; }

  QStringList cleared;

 private:
  mutable QMutex mutex_;
  std::vector<std::shared_ptr<CVEntry>> entries_;
};

class FakePasteboard : public CVPasteboard {
 public:
  QStringList plainTexts() const override { return texts; }
  QList<QUrl> fileURLs() const override { return files; }
  QStringList texts;
  QList<QUrl> files;
};

class FakeRedirectHandler : public CVRedirectHandler {
 public:
  void setupDropBox() override { isSetUp = true; }
  bool handleRedirectURL(const QUrl& url, Completion completion) override {
    if (url.scheme() != u"db-key"_s) return false;
    completion(url.host() == u"cancel"_s ? CVRedirectOutcome::Cancel : CVRedirectOutcome::Success);
    return true;
  }
  bool isSetUp = false;
};

class RecordingAlerts : public CVAlertPresenter {
 public:
  void displayOKAlertWithTitle(const QString& title, const QString& message) override {
    shown << title + u": "_s + message;
  }
  QStringList shown;
};

class RecordingAssembler : public CVMultipageAssembler {
 public:
  MaybeError mergePDFURLs(const QList<QUrl>& list, const QUrl& target) override {
    QFile file(target.toLocalFile());
    if (!file.open(QIODevice::WriteOnly)) return Error{u"test"_s, 1, u"no"_s};
    for (const QUrl& url : list)
      file.write(url.fileName().toUtf8() + '\n');
    return std::nullopt;
  }
};

/// A browser whose front page the test decides.
class FakeFrontPage : public browsers::FrontPage {
 public:
  bool isRunning() const override { return connected; }
  browsers::PageTexts capture() override { return texts; }
  std::optional<QString> source() override { return loadedSource; }
  std::optional<QString> address() override { return shownAddress; }
  std::optional<QString> unavailableReason() const override { return reason; }

  /// Reachable although it is not among the running applications.
  bool connected = false;
  browsers::PageTexts texts;
  std::optional<QString> loadedSource, shownAddress, reason;
};

class FakeRunningApplications : public desktop::RunningApplications {
 public:
  bool isRunning(const QString& identifier) const override {
    return identifiers.contains(identifier);
  }
  QStringList identifiers;
};

class DelegateFixture : public ::testing::Test {
 protected:
  DelegateFixture() {
    CVAppDelegate::Services services;
    services.makeEntry = [this](const QUrl& url, const std::optional<QString>& source, bool scripts,
                                const QSizeF& size) -> std::shared_ptr<CVEntry> {
      if (beforeEntry) beforeEntry(url);
      return std::make_shared<TestEntry>(url, source, scripts, size);
    };
    services.userDefaults = defaults::UserDefaults::inMemory();
    services.utils.alerts = alerts;
    services.utils.safari = safari;
    services.utils.chrome = chrome;
    services.utils.runningApplications = running;
    services.redirectHandler = redirect;
    services.pasteboard = pasteboard;
    services.multipageAssembler = std::make_shared<RecordingAssembler>();
    services.terminate = [this] { terminated = true; };
    delegate = CVAppDelegate::create(std::move(services));
    delegate->setMainWindow(&window);
    delegate->setTableViewController(table);
    delegate->applicationWillFinishLaunching();
  }
  ~DelegateFixture() override {
    delegate->setMainWindow(nullptr);
    for (const char16_t* name : {u"utils", u"entryTaskManager", u"preferences"})
      CVObjectRepository::singleton().addObject({}, QString::fromUtf16(name));
  }

  void launch() { delegate->doFinishApplicationLaunch(); }

  std::shared_ptr<TestEntry> entry(std::size_t index) const {
    return std::static_pointer_cast<TestEntry>(table->getEntries().at(index));
  }
  bool waitForEntries(std::size_t count) const {
    return support::waitFor([&] { return table->getEntries().size() == count; });
  }
  QStringList addresses() const {
    QStringList list;
    for (const auto& entry : table->getEntries())
      list << entry->initialURL().toString();
    return list;
  }
  /// Until all work that was begun before, on any queue, has ended.
  void settle() {
    for (int round = 0; round < 3; ++round) {
      // As many places as the pool has are taken together, so every earlier work has ended.
      const auto arrived = std::make_shared<std::atomic<int>>(0);
      const int places = qMax(16, 2 * QThread::idealThreadCount());
      for (int i = 0; i < places; ++i) {
        dispatch::globalAsync(dispatch::Priority::Default, [arrived, places] {
          ++*arrived;
          arrived->notify_all();
          for (int seen = *arrived; seen < places; seen = *arrived)
            arrived->wait(seen);
        });
      }
      ASSERT_TRUE(support::waitFor([&] { return *arrived == places; }));
      bool served = false;
      dispatch::mainAsync([&served] { served = true; });
      ASSERT_TRUE(support::waitFor([&] { return served; }));
    }
  }

  LoggedLines log;
  RecordingWindow window;
  std::shared_ptr<RecordingTable> table = std::make_shared<RecordingTable>();
  std::shared_ptr<FakePasteboard> pasteboard = std::make_shared<FakePasteboard>();
  std::shared_ptr<FakeRedirectHandler> redirect = std::make_shared<FakeRedirectHandler>();
  std::shared_ptr<RecordingAlerts> alerts = std::make_shared<RecordingAlerts>();
  std::shared_ptr<FakeFrontPage> safari = std::make_shared<FakeFrontPage>();
  std::shared_ptr<FakeFrontPage> chrome = std::make_shared<FakeFrontPage>();
  std::shared_ptr<FakeRunningApplications> running = std::make_shared<FakeRunningApplications>();
  std::function<void(const QUrl&)> beforeEntry;
  bool terminated = false;
  std::shared_ptr<CVAppDelegate> delegate;
};

}  // namespace delegate_test
