#include "intake/CVAppDelegate.h"
#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntry.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

/// Neither at work nor failed to load.
bool canBeProcessed(const CVEntry& entry) {
  switch (entry.state()) {
    case CVEntryStateDownloading:
    case CVEntryStateProcessing:
      return false;
    case CVEntryStateDownloaded:
      return !entry.error();
    default:
      return true;
  }
}

}  // namespace

void CVAppDelegate::processAll() {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  const auto table = tableViewController();
  if (!preferences || !table) return;
  withMainWindow([](CVMainWindow& window) { window.closeBatchPopover(); });
  setState(u"Processing all items..."_s);
  const bool processAutomatically = preferences->processAutomatically();
  // While loading, nothing is saved: the change is for this command only.
  preferences->setLoading(true);
  preferences->setProcessAutomatically(true);
  dispatch::globalAsync(dispatch::Priority::High,
                        [self = shared_from_this(), table, processAutomatically] {
                          self->enqueueAll(table->getEntries(), processAutomatically);
                        });
}

void CVAppDelegate::enqueueAll(const std::vector<std::shared_ptr<CVEntry>>& entries,
                               bool processAutomatically) {
  // Starts at all entries, those that are skipped below included: then it never reaches zero.
  const auto remaining = std::make_shared<std::atomic<std::size_t>>(entries.size());
  const auto self = shared_from_this();
  const auto ended = [self, remaining, processAutomatically](const std::shared_ptr<CVEntry>&,
                                                             const MaybeError&) {
    if (--*remaining == 0) self->allProcessed(processAutomatically);
  };
  const auto manager = CVObjectRepository::singleton().getEntryTaskManager();
  if (!manager) return;  // the program ends
  for (const auto& entry : entries) {
    if (canBeProcessed(*entry)) manager->enqueueEntryForProcessing(entry, ended);
  }
}

void CVAppDelegate::allProcessed(bool processAutomatically) {
  dispatch::mainAsync([self = shared_from_this(), processAutomatically] {
    const auto preferences = CVObjectRepository::singleton().getPreferences();
    preferences->setProcessAutomatically(processAutomatically);
    preferences->setLoading(false);
    self->restoreState();
  });
}

void CVAppDelegate::clearAll() {
  withMainWindow([](CVMainWindow& window) { window.closeBatchPopover(); });
  if (const auto table = tableViewController()) table->clearAll();
}

void CVAppDelegate::clearCompleted() {
  withMainWindow([](CVMainWindow& window) { window.closeBatchPopover(); });
  if (const auto table = tableViewController()) table->clearCompleted();
}

void CVAppDelegate::entryTableControllerNumberOfEntriesChanged(CVEntryTable&) {
  withMainWindow([](CVMainWindow& window) {
    window.resizeWindow();
    window.updateBottomControlsState();
  });
  entriesChanged_.notify_all();
}

void CVAppDelegate::entryTableControllerStateOfEntriesChanged(CVEntryTable&) {
  withMainWindow([](CVMainWindow& window) { window.updateBottomControlsState(); });
  entriesChanged_.notify_all();
}
