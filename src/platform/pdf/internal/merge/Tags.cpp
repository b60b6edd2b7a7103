#include "platform/pdf/internal/merge/Tags.h"

#include <limits>

namespace pdf {
namespace {

constexpr long long largestNumber = std::numeric_limits<int>::max() / 2;

NameTree entriesOf(QPDFObjectHandle dictionary) {
  return dictionary.isDictionary() ? dictionary.getDictAsMap() : NameTree();
}

bool isSame(QPDFObjectHandle one, QPDFObjectHandle other) {
  return one.unparseResolved() == other.unparseResolved();
}

enum class SameMeaning { Shared, Renamed };

/// New names for those that mean something else in the joined document.
Renaming::Names newNames(const NameTree& entries, const NameTree& joined, SameMeaning same) {
  Renaming::Names names;
  for (const auto& [name, meaning] : entries) {
    const auto taken = joined.find(name);
    if (taken == joined.end()) continue;
    if (same == SameMeaning::Shared && isSame(taken->second, meaning)) continue;
    std::string candidate;
    for (int number = 2;
         candidate.empty() || joined.count(candidate) > 0 || entries.count(candidate) > 0;
         ++number) {
      candidate = name + "-" + std::to_string(number);
    }
    names[name] = candidate;
  }
  return names;
}

NameTree copyRenamed(const NameTree& entries, const Renaming::Names& names, ObjectCopier& copier) {
  NameTree copies;
  for (const auto& [name, value] : entries) {
    const auto renamed = names.find(name);
    copies.emplace(renamed == names.end() ? name : renamed->second, copier.copy(value));
  }
  return copies;
}

long long nextNumber(QPDFObjectHandle root, const NumberTree& content) {
  QPDFObjectHandle stated = root.getKey("/ParentTreeNextKey");
  const long long used = content.empty() ? 0 : content.rbegin()->first + 1;
  return stated.isInteger() ? std::max(used, stated.getIntValue()) : used;
}

void addDictionary(QPDFObjectHandle root, const std::string& key, const NameTree& entries) {
  if (!entries.empty()) root.replaceKey(key, QPDFObjectHandle::newDictionary(entries));
}

}  // namespace

DocumentTags::DocumentTags(QPDF& source, const Tags& joined, QPDFObjectHandle root,
                           ObjectCopier& copier) {
  QPDFObjectHandle own = source.getRoot().getKey("/StructTreeRoot");
  if (!own.isDictionary()) return;
  if (own.isIndirect()) copier.map(own, root);
  prepareElements(own.getKey("/K"), source.getRoot().getKey("/Lang"));
  tags_.content = readNumberTree(own.getKey("/ParentTree"));
  tags_.nextNumber = nextNumber(own, tags_.content);
  const bool numbersFit = tags_.nextNumber >= 0 && tags_.nextNumber < largestNumber &&
                          (tags_.content.empty() || tags_.content.begin()->first >= 0);
  usable_ = !tags_.elements.empty() && numbersFit && joined.nextNumber < largestNumber;
  if (!usable_) return;
  tags_.identifiers = readNameTree(own.getKey("/IDTree"));
  tags_.roles = entriesOf(own.getKey("/RoleMap"));
  tags_.classes = entriesOf(own.getKey("/ClassMap"));
  offset_ = joined.nextNumber;
  Renaming& renaming = copier.renaming();
  renaming.tagNumberOffset = static_cast<int>(offset_);
  renaming.roles = newNames(tags_.roles, joined.roles, SameMeaning::Shared);
  renaming.classes = newNames(tags_.classes, joined.classes, SameMeaning::Shared);
  renaming.elementIdentifiers =
      newNames(tags_.identifiers, joined.identifiers, SameMeaning::Renamed);
}

/// The document's language goes to its uppermost elements: the joined document can name only one.
void DocumentTags::prepareElements(QPDFObjectHandle kids, QPDFObjectHandle language) {
  const std::vector<QPDFObjectHandle> elements =
      kids.isArray() ? kids.getArrayAsVector() : std::vector{kids};
  for (QPDFObjectHandle element : elements) {
    if (!element.isDictionary() || !element.isIndirect()) continue;
    if (language.isString() && !element.hasKey("/Lang")) element.replaceKey("/Lang", language);
    tags_.elements.push_back(element);
  }
}

Tags DocumentTags::copy(ObjectCopier& copier) {
  Tags copies;
  if (!usable_) return copies;
  for (const QPDFObjectHandle& element : tags_.elements)
    copies.elements.push_back(copier.copy(element));
  for (const auto& [number, elements] : tags_.content)
    copies.content.emplace(number + offset_, copier.copy(elements));
  copies.nextNumber = offset_ + tags_.nextNumber;
  const Renaming& renaming = copier.renaming();
  copies.identifiers = copyRenamed(tags_.identifiers, renaming.elementIdentifiers, copier);
  copies.roles = copyRenamed(tags_.roles, renaming.roles, copier);
  copies.classes = copyRenamed(tags_.classes, renaming.classes, copier);
  return copies;
}

void append(Tags& joined, const Tags& more) {
  joined.elements.insert(joined.elements.end(), more.elements.begin(), more.elements.end());
  joined.content.insert(more.content.begin(), more.content.end());
  joined.nextNumber = std::max(joined.nextNumber, more.nextNumber);
  joined.identifiers.insert(more.identifiers.begin(), more.identifiers.end());
  joined.roles.insert(more.roles.begin(), more.roles.end());
  joined.classes.insert(more.classes.begin(), more.classes.end());
}

void writeTags(QPDF& document, QPDFObjectHandle root, const Tags& tags) {
  if (tags.elements.empty()) return;
  root.replaceKey("/Type", QPDFObjectHandle::newName("/StructTreeRoot"));
  root.replaceKey("/K", QPDFObjectHandle::newArray(tags.elements));
  root.replaceKey("/ParentTree", writeNumberTree(document, tags.content));
  root.replaceKey("/ParentTreeNextKey", QPDFObjectHandle::newInteger(tags.nextNumber));
  if (!tags.identifiers.empty())
    root.replaceKey("/IDTree", writeNameTree(document, tags.identifiers));
  addDictionary(root, "/RoleMap", tags.roles);
  addDictionary(root, "/ClassMap", tags.classes);
  QPDFObjectHandle marks = QPDFObjectHandle::newDictionary();
  marks.replaceKey("/Marked", QPDFObjectHandle::newBool(true));
  document.getRoot().replaceKey("/MarkInfo", marks);
  document.getRoot().replaceKey("/StructTreeRoot", root);
}

}  // namespace pdf
