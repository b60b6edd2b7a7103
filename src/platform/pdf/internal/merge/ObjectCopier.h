#pragma once

#include <deque>
#include <map>
#include <qpdf/QPDF.hh>
#include <set>

#include "platform/pdf/internal/merge/Renaming.h"
#include "platform/pdf/internal/merge/ResourcePool.h"

namespace pdf {

/// Copies objects of one document into another and renames on the way. References to pages lead to
/// the pages' copies; those to the document's own catalog and page tree lead nowhere. Resources
/// that the target has already are not copied. The source must not be used for anything else
/// afterwards: its streams lose their entries.
class ObjectCopier {
 public:
  ObjectCopier(QPDF& target, ResourcePool& pool) : target_(target), pool_(pool) {}

  Renaming& renaming() { return renaming_; }

  /// References to `source` become references to `copy`, which the caller fills.
  void map(QPDFObjectHandle source, QPDFObjectHandle copy) {
    copies_.insert_or_assign(source.getObjGen(), copy);
  }

  /// References to `source` become null.
  void leaveOut(QPDFObjectHandle source) { map(source, QPDFObjectHandle::newNull()); }

  /// A copy for use in the target. What it refers to is complete after `finish`.
  QPDFObjectHandle copy(QPDFObjectHandle source);

  /// The entries of a dictionary, copied into an existing one. `except` stay behind.
  void copyEntries(QPDFObjectHandle source, QPDFObjectHandle target,
                   const std::set<std::string>& except);

  void finish();

 private:
  struct Pending {
    QPDFObjectHandle source;
    QPDFObjectHandle copy;
  };
  using Entries = std::map<std::string, QPDFObjectHandle>;

  QPDFObjectHandle copyReference(QPDFObjectHandle source);
  QPDFObjectHandle copyIndirect(QPDFObjectHandle source);
  QPDFObjectHandle copyStream(QPDFObjectHandle source);
  QPDFObjectHandle copyValue(QPDFObjectHandle source, int depth);
  QPDFObjectHandle copyArray(QPDFObjectHandle source, int depth);
  QPDFObjectHandle copyDictionary(QPDFObjectHandle source, int depth);
  std::optional<QPDFObjectHandle> renamed(const std::string& key, QPDFObjectHandle value,
                                          const Entries& entries);
  std::optional<QPDFObjectHandle> renamedDestination(QPDFObjectHandle value) const;
  std::optional<QPDFObjectHandle> renamedTag(const std::string& key, QPDFObjectHandle value) const;

  QPDF& target_;
  ResourcePool& pool_;
  ContentDigest digest_;
  Renaming renaming_;
  std::map<QPDFObjGen, QPDFObjectHandle> copies_;
  std::deque<Pending> pending_;
};

}  // namespace pdf
