#include "Program.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVError.h"
#include "settings/CVObjectRepository.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace test {

Entry::Entry(const QString& address) : CVEntry(QUrl(address)) {}

void Entry::prepareWithCompletion(Completion completion) {
  std::lock_guard lock(mutex_);
  preparing_ = std::move(completion);
  ++prepared;
}

void Entry::processWithCompletion(Completion completion) {
  std::lock_guard lock(mutex_);
  processing_ = std::move(completion);
  ++processed;
}

void Entry::endPreparing(const MaybeError& error) {
  Completion completion;
  {
    std::lock_guard lock(mutex_);
    completion.swap(preparing_);
  }
  if (completion) completion(shared_from_this(), error);
}

void Entry::endProcessing(const MaybeError& error) {
  Completion completion;
  {
    std::lock_guard lock(mutex_);
    completion.swap(processing_);
  }
  if (completion) completion(shared_from_this(), error);
}

void Entry::fail(CVEntryState state) {
  auto error = std::make_shared<CVError>();
  error->setErrorType(state == CVEntryStateDone ? 1 : 0);
  setError(error);
  setState(state);
}

void RecordedNotifications::deliver(const desktop::Notification& notification) {
  delivered.push_back(notification);
}

Program::Program() {
  CVAppDelegate::Services services;
  services.makeEntry = [](const QUrl& url, const auto&, bool, const QSizeF&) {
    return std::make_shared<Entry>(url.toString());
  };
  services.userDefaults = defaults::UserDefaults::inMemory();
  services.terminate = [this] { ++terminated; };
  delegate = CVAppDelegate::create(std::move(services));
  table = CVEntryTableController::create({notifications, sounds});
  delegate->setTableViewController(table);
  CVMainWindowController::Services windowServices;
  windowServices.delegate = delegate;
  windowServices.table = table;
  windowServices.sounds = sounds;
  window = std::make_unique<CVMainWindowController>(std::move(windowServices));
  delegate->applicationWillFinishLaunching();
  delegate->doFinishApplicationLaunch();
  settle();
}

Program::~Program() {
  settle();
  window.reset();
  delegate->setTableViewController(nullptr);
  auto& repository = CVObjectRepository::singleton();
  for (const QString& name : {u"preferences"_s, u"entryTaskManager"_s, u"utils"_s}) {
    repository.addObject(nullptr, name);
  }
}

std::shared_ptr<Entry> Program::add(CVEntryState state, const QString& title) {
  auto entry = std::make_shared<Entry>();
  table->addEntry(entry);
  settle();
  entry->setTitle(title);
  entry->setState(state);
  settle();
  return entry;
}

CVDefaultPreferences& Program::preferences() const {
  return *CVObjectRepository::singleton().getPreferences();
}

/// Twice through the queue: what is sent along the first time sends more.
void Program::settle() {
  for (int round = 0; round < 3; ++round) {
    bool reached = false;
    dispatch::mainAsync([&reached] { reached = true; });
    support::waitFor([&reached] { return reached; });
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

}  // namespace test
