#include "platform/pdf/internal/merge/Tags.h"

#include <algorithm>

namespace pdf {
namespace {

enum class SameMeaning { Shared, Renamed };

/// New names for those that mean something else in the joined document.
Renaming::Names newNames(const NameTree& entries, const NameTexts& joined, SameMeaning same,
                         size_t documentNumber, ObjectCopier& copier) {
  Renaming::Names names;
  for (const auto& [name, meaning] : entries) {
    const auto taken = joined.find(name);
    if (taken == joined.end()) continue;
    if (same == SameMeaning::Shared && taken->second == copier.copy(meaning)) continue;
    std::string candidate;
    for (size_t number = documentNumber;
         candidate.empty() || joined.count(candidate) > 0 || entries.count(candidate) > 0; ++number)
      candidate = name + "-" + std::to_string(number);
    names[name] = candidate;
  }
  return names;
}

void copyRenamed(const NameTree& entries, const Renaming::Names& names, ObjectCopier& copier,
                 NameTexts& joined) {
  for (const auto& [name, value] : entries) {
    const auto renamed = names.find(name);
    joined.emplace(renamed == names.end() ? name : renamed->second, copier.copy(value));
  }
}

long long nextNumber(const Value& stated, const NumberTree& content) {
  const long long used =
      content.empty() ? 0 : std::min(content.rbegin()->first, largestTagNumber) + 1;
  return std::max(used, stated.integer().value_or(0));
}

std::string dictionaryEntry(const char* key, const NameTexts& entries) {
  if (entries.empty()) return {};
  std::string text = std::string(key) + "<<";
  for (const auto& [name, value] : entries)
    text += nameText(name) + ' ' + value;
  return text + ">>";
}

}  // namespace

DocumentTags::DocumentTags(const SourceFile& source, const Tags& joined, int root,
                           size_t documentNumber, ObjectCopier& copier) {
  const Value& own = source.rootEntry("/StructTreeRoot");
  if (!own.isDictionary()) return;
  const Value& reference = source.root()["/StructTreeRoot"];
  if (reference.isReference()) copier.map(reference.reference, root);
  prepareElements(source, own["/K"], copier);
  content_ = readNumberTree(source, own["/ParentTree"]);
  nextNumber_ = nextNumber(source.resolved(own["/ParentTreeNextKey"]), content_);
  const bool numbersFit = nextNumber_ >= 0 && nextNumber_ < largestTagNumber &&
                          (content_.empty() || content_.begin()->first >= 0);
  usable_ = !elements_.empty() && numbersFit && joined.nextNumber < largestTagNumber;
  if (!usable_) return;
  identifiers_ = readNameTree(source, own["/IDTree"]);
  roles_ = readDictionary(source.resolved(own["/RoleMap"]));
  classes_ = readDictionary(source.resolved(own["/ClassMap"]));
  Renaming& renaming = copier.renaming();
  renaming.tagNumberOffset = joined.nextNumber;
  renaming.roles = newNames(roles_, joined.roles, SameMeaning::Shared, documentNumber, copier);
  renaming.classes =
      newNames(classes_, joined.classes, SameMeaning::Shared, documentNumber, copier);
  renaming.elementIdentifiers =
      newNames(identifiers_, joined.identifiers, SameMeaning::Renamed, documentNumber, copier);
}

/// The document's language goes to its uppermost elements: the joined document can name only one.
void DocumentTags::prepareElements(const SourceFile& source, const Value& kids,
                                   ObjectCopier& copier) {
  const Value& language = source.rootEntry("/Lang");
  const Value& list = source.resolved(kids);
  const std::span<const Value> elements =
      list.isArray() ? list.items() : std::span<const Value>(&kids, 1);
  for (const Value& element : elements) {
    const Value& entries = source.resolved(element);
    if (!entries.isDictionary() || !element.isReference()) continue;
    if (language.isString() && entries["/Lang"].isNull())
      copier.addEntry(element.reference, "/Lang" + std::string(language.text));
    elements_.push_back(element);
  }
}

void DocumentTags::copy(ObjectCopier& copier, Tags& joined) const {
  if (!usable_) return;
  const long long offset = joined.nextNumber;
  for (const Value& element : elements_)
    joined.elements += copier.copy(element) + ' ';
  for (const auto& [number, elements] : content_)
    joined.content.emplace_hint(joined.content.end(), number + offset, copier.copy(elements));
  joined.nextNumber = offset + nextNumber_;
  const Renaming& renaming = copier.renaming();
  copyRenamed(identifiers_, renaming.elementIdentifiers, copier, joined.identifiers);
  copyRenamed(roles_, renaming.roles, copier, joined.roles);
  copyRenamed(classes_, renaming.classes, copier, joined.classes);
}

std::string writeTags(CompactFile& target, int root, const Tags& tags) {
  if (tags.elements.empty()) return {};
  std::string text = "<</Type/StructTreeRoot/K[" + tags.elements + "]/ParentTree " +
                     referenceText(writeNumberTree(target, tags.content)) + "/ParentTreeNextKey " +
                     std::to_string(tags.nextNumber);
  if (!tags.identifiers.empty())
    text += "/IDTree " + referenceText(writeNameTree(target, tags.identifiers));
  text += dictionaryEntry("/RoleMap", tags.roles) + dictionaryEntry("/ClassMap", tags.classes);
  target.writeObject(root, text + ">>");
  return "/MarkInfo<</Marked true>>/StructTreeRoot " + referenceText(root);
}

}  // namespace pdf
