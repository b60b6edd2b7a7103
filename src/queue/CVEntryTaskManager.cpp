#include "queue/CVEntryTaskManager.h"

#include <algorithm>
#include <cstdlib>

#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

std::shared_ptr<CVEntryTaskManager> CVEntryTaskManager::create() {
  const std::shared_ptr<CVEntryTaskManager> manager(new CVEntryTaskManager);
  const auto stepEndBlock = [weak = std::weak_ptr(manager)](Running CVEntryTaskManager::*running) {
    return [weak, running](const std::shared_ptr<CVEntry>& entry, const MaybeError& error) {
      if (const auto self = weak.lock()) self->stepEnded((*self).*running, entry, error);
    };
  };
  manager->prepareCompletionBlock_ = stepEndBlock(&CVEntryTaskManager::runningPreparingEntries_);
  manager->processCompletionBlock_ = stepEndBlock(&CVEntryTaskManager::runningProcessingEntries_);
  return manager;
}

void CVEntryTaskManager::enqueueEntryForPreparing(const std::shared_ptr<CVEntry>& entry,
                                                  CVEntry::Completion completion) {
  enqueue(entriesToPrepare_, {entry, std::move(completion)});
}

void CVEntryTaskManager::enqueueEntryForProcessing(const std::shared_ptr<CVEntry>& entry,
                                                   CVEntry::Completion completion) {
  enqueue(entriesToProcess_, {entry, std::move(completion)});
}

void CVEntryTaskManager::enqueue(Waiting& waiting, CVEntryProcessTask task) {
  {
    std::lock_guard lock(mutex_);
    waiting.push_back(std::move(task));
  }
  updateTasks();
}

void CVEntryTaskManager::updateTasks() {
  std::lock_guard lock(mutex_);
  if (const auto entry = takeNext(entriesToPrepare_, runningPreparingEntries_)) {
    dispatch::mainAsync(
        [entry, block = prepareCompletionBlock_] { entry->prepareWithCompletion(block); });
  }
  if (const auto entry = takeNext(entriesToProcess_, runningProcessingEntries_)) {
    dispatch::globalAsync(dispatch::Priority::High, [entry, block = processCompletionBlock_] {
      entry->processWithCompletion(block);
    });
  }
}

/// Fills the step's one place with the next entry that carries no error, and returns that entry.
std::shared_ptr<CVEntry> CVEntryTaskManager::takeNext(Waiting& waiting, Running& running) {
  if (!running.empty()) return nullptr;
  while (!waiting.empty()) {
    CVEntryProcessTask task = std::move(waiting.front());
    waiting.pop_front();
    if (task.entry->error()) continue;
    running.push_back(task);
    return task.entry;
  }
  return nullptr;
}

void CVEntryTaskManager::stepEnded(Running& running, const std::shared_ptr<CVEntry>& entry,
                                   const MaybeError& error) {
  {
    std::lock_guard lock(mutex_);
    const auto isThisEntry = [&](const CVEntryProcessTask& task) { return task.entry == entry; };
    const auto found = std::find_if(running.begin(), running.end(), isThisEntry);
    if (found == running.end()) {
      // The bookkeeping is broken: going on could lose or double a page.
      logLine(u"Internal inconsistency"_s);
      std::abort();
    }
    const CVEntryProcessTask task = *found;
    if (task.completion) task.completion(task.entry, error);
    running.erase(std::find_if(running.begin(), running.end(), isThisEntry));
  }
  updateTasks();
}
