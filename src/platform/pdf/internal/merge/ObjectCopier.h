#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/pdf/internal/merge/CompactFile.h"
#include "platform/pdf/internal/merge/Renaming.h"
#include "platform/pdf/internal/merge/ResourcePool.h"
#include "platform/pdf/internal/merge/SourceFile.h"
#include "platform/pdf/internal/merge/ValueText.h"

namespace pdf {

/// Copies objects of one document into another and renames on the way. References to pages lead to
/// the pages' copies; those to the document's own catalog and page tree lead nowhere. Resources
/// that the target has already are not copied.
class ObjectCopier : private ValueText {
 public:
  ObjectCopier(const SourceFile& source, CompactFile& target, ResourcePool& pool);

  Renaming& renaming() { return renaming_; }

  /// References to the object `source` become references to `copy`, which the caller writes.
  void map(int source, int copy) { copies_.at(static_cast<size_t>(source)) = copy; }

  /// Adds an entry to the copy of a dictionary.
  void addEntry(int source, const std::string& entry) { added_[source] += entry; }

  /// The value's text for use in the target. What it refers to is complete after `finish`.
  std::string copy(const Value& value);

  /// The entries of a dictionary, without its brackets. `except` stay behind.
  std::string copyEntries(const Value& dictionary,
                          std::initializer_list<std::string_view> except = {});

  void finish();

 private:
  /// What decides how the entries of a dictionary are renamed.
  struct Dictionary {
    const Value& kind;  ///< its /S
    bool isElement;     ///< of the structure tree
  };

  void appendReference(std::string& text, int object) override;
  void appendEntries(std::string& text, const Value& dictionary,
                     std::initializer_list<std::string_view> except) override;
  int copyOf(int object);
  std::string objectText(int object);
  std::optional<std::string> renamed(std::string_view key, const Value& value,
                                     const Dictionary& dictionary) const;
  std::optional<std::string> renamedDestination(const Value& value) const;
  std::optional<std::string> renamedTag(std::string_view key, const Value& value) const;
  std::string renamedNames(const Value& value, const Renaming::Names& names) const;
  std::string renamedStrings(const Value& value, const Renaming::Names& names) const;

  const SourceFile& source_;
  CompactFile& target_;
  ResourcePool& pool_;
  Sharing sharing_;
  Renaming renaming_;
  std::vector<int> copies_;  ///< by the source's numbers
  std::map<int, std::string> added_;
  std::deque<int> pending_;
};

}  // namespace pdf
