#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "queue/CVEntry.h"

/// One request to prepare or to process an entry.
struct CVEntryProcessTask {
  std::shared_ptr<CVEntry> entry;
  CVEntry::Completion completion;
};

/// Runs the two long steps of every entry, each step one entry at a time and in the order in which
/// they were asked for. Preparing starts on the main queue, processing on the global queue; one of
/// each may run at once. The manager never checks that an entry was prepared before it is
/// processed.
///
/// A step that never ends holds its place for good. An entry that carries an error when its turn
/// comes is skipped, and its completion is never called.
class CVEntryTaskManager {
 public:
  static std::shared_ptr<CVEntryTaskManager> create();
  CVEntryTaskManager(const CVEntryTaskManager&) = delete;
  CVEntryTaskManager& operator=(const CVEntryTaskManager&) = delete;

  /// The completion (which may be empty) runs on the thread that ends the step, under the manager's
  /// lock: it may enqueue, but must not wait for another thread that does.
  void enqueueEntryForPreparing(const std::shared_ptr<CVEntry>& entry,
                                CVEntry::Completion completion);
  void enqueueEntryForProcessing(const std::shared_ptr<CVEntry>& entry,
                                 CVEntry::Completion completion);

  /// Starts what can start.
  void updateTasks();

 private:
  using Waiting = std::deque<CVEntryProcessTask>;
  using Running = std::vector<CVEntryProcessTask>;

  CVEntryTaskManager() = default;
  void enqueue(Waiting& waiting, CVEntryProcessTask task);
  std::shared_ptr<CVEntry> takeNext(Waiting& waiting, Running& running);
  void stepEnded(Running& running, const std::shared_ptr<CVEntry>& entry, const MaybeError& error);

  std::recursive_mutex mutex_;
  Waiting entriesToPrepare_;
  Waiting entriesToProcess_;
  Running runningPreparingEntries_;
  Running runningProcessingEntries_;
  /// Handed to every entry; they hold the manager weakly.
  CVEntry::Completion prepareCompletionBlock_;
  CVEntry::Completion processCompletionBlock_;
};
