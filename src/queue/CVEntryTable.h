#pragma once

#include <memory>
#include <vector>

class CVEntry;
class CVEntryTable;

/// Hears, on the thread of the change, that the queue's length or an entry's state changed.
class CVEntryTableControllerDelegate {
 public:
  virtual ~CVEntryTableControllerDelegate() = default;
  virtual void entryTableControllerNumberOfEntriesChanged(CVEntryTable& table) = 0;
  virtual void entryTableControllerStateOfEntriesChanged(CVEntryTable& table) = 0;
};

/// The queue as everyone but the window sees it: an ordered list of entries. Every operation may be
/// called from any thread.
class CVEntryTable {
 public:
  virtual ~CVEntryTable() = default;

  /// Appends the entry and has it prepared; processing follows when it is automatic.
  virtual void addEntry(const std::shared_ptr<CVEntry>& entry) = 0;

  /// Takes out that very entry, if it is there. Work that it waits for goes on.
  virtual void removeEntry(const std::shared_ptr<CVEntry>& entry) = 0;

  /// In the order of the queue.
  virtual std::vector<std::shared_ptr<CVEntry>> getEntries() const = 0;

  virtual void clearAll() = 0;

  /// Takes out the entries that are done without an error.
  virtual void clearCompleted() = 0;
};
