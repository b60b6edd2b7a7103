#include "platform/pdf/internal/merge/ObjectCopier.h"

#include <algorithm>

#include "platform/pdf/internal/merge/ValueText.h"

namespace pdf {
namespace {

constexpr int unknown = 0;
constexpr int nowhere = -1;

constexpr char leftOut[] = "null";

bool isPageTree(const Value& value) {
  const Value& type = value["/Type"];
  return type.isName("/Page") || type.isName("/Pages") || type.isName("/Catalog");
}

std::string renamedName(const Value& value, const Renaming::Names& names) {
  const auto found = names.find(value.bytes());
  return found == names.end() ? std::string(value.text) : nameText(found->second);
}

std::string renamedString(const Value& value, const Renaming::Names& names) {
  const auto found = names.find(value.bytes());
  return found == names.end() ? std::string(value.text) : stringText(found->second);
}

}  // namespace

ObjectCopier::ObjectCopier(const SourceFile& source, CompactFile& target, ResourcePool& pool)
    : source_(source),
      target_(target),
      pool_(pool),
      sharing_(source),
      copies_(static_cast<size_t>(source.objectCount()), unknown) {}

std::string ObjectCopier::copy(const Value& value) {
  std::string text;
  append(text, value);
  return text;
}

std::string ObjectCopier::copyEntries(const Value& dictionary,
                                      std::initializer_list<std::string_view> except) {
  std::string text;
  appendEntries(text, dictionary, except);
  return text;
}

void ObjectCopier::finish() {
  for (; !pending_.empty(); pending_.pop_front()) {
    const int object = pending_.front(), copy = copies_[static_cast<size_t>(object)];
    const std::string text = objectText(object);
    if (const auto data = source_.data(object)) {
      target_.writeStream(copy, text, *data);
    } else {
      target_.writeObject(copy, text);
    }
  }
}

/// The length of a stream is written anew with its bytes.
std::string ObjectCopier::objectText(int object) {
  const Value& value = source_.object(object);
  if (!value.isDictionary()) return copy(value);
  std::string text = "<<";
  source_.data(object) ? appendEntries(text, value, {"/Length"}) : appendEntries(text, value, {});
  const auto added = added_.find(object);
  if (added != added_.end()) text += added->second;
  return text + ">>";
}

void ObjectCopier::appendEntries(std::string& text, const Value& dictionary,
                                 std::initializer_list<std::string_view> except) {
  const Value& kind = dictionary["/S"];
  const Dictionary described{kind, !kind.isNull() && !dictionary["/P"].isNull()};
  for (std::uint32_t index = 0; index < dictionary.count; index += 2) {
    const std::string_view key = dictionary.items()[index].text;
    const Value& value = dictionary.items()[index + 1];
    if (std::find(except.begin(), except.end(), key) != except.end()) continue;
    // An entry that is null is none (ISO 32000-1, 7.3.7).
    if (source_.resolved(value).isNull()) continue;
    text += key;
    const auto other = renamed(key, value, described);
    other ? appendWord(text, *other) : append(text, value);
  }
}

/// Numbers, names and strings are not worth an object of their own.
void ObjectCopier::appendReference(std::string& text, int object) {
  const Value& value = source_.object(object);
  const bool isCompound = value.isDictionary() || value.isArray();
  if (!isCompound) return append(text, value);
  const int copy = copyOf(object);
  appendWord(text, copy == nowhere ? leftOut : referenceText(copy));
}

int ObjectCopier::copyOf(int object) {
  int copy = copies_[static_cast<size_t>(object)];
  if (copy != unknown) return copy;
  if (sharing_.isShared(object)) {
    const std::string text = objectText(object);
    const auto data = source_.data(object);
    copy = data ? pool_.stream(text, *data, source_.dataHash(object)) : pool_.object(text);
  } else if (isPageTree(source_.object(object))) {
    // Pages have their copies; one that is met here belongs to no page tree.
    copy = nowhere;
  } else {
    copy = target_.reserve();
    pending_.push_back(object);
  }
  map(object, copy);
  return copy;
}

std::optional<std::string> ObjectCopier::renamed(std::string_view key, const Value& value,
                                                 const Dictionary& dictionary) const {
  if (key == "/Dest") return renamedDestination(source_.resolved(value));
  if (key == "/StructParent" || key == "/StructParents") {
    const auto number = source_.resolved(value).integer();
    if (!number || *number < 0 || *number > largestTagNumber || !renaming_.tagNumberOffset)
      return leftOut;
    return std::to_string(*number + *renaming_.tagNumberOffset);
  }
  if (dictionary.kind.isNull()) {
    const Value& headers = source_.resolved(value);
    if (key != "/Headers" || !headers.isArray()) return std::nullopt;
    return renamedStrings(headers, renaming_.elementIdentifiers);
  }
  if (key == "/D" && dictionary.kind.isName("/GoTo"))
    return renamedDestination(source_.resolved(value));
  return dictionary.isElement ? renamedTag(key, source_.resolved(value)) : std::nullopt;
}

std::optional<std::string> ObjectCopier::renamedDestination(const Value& value) const {
  if (!value.isName() && !value.isString()) return std::nullopt;
  const Renaming::Names& names =
      value.isName() ? renaming_.oldStyleDestinations : renaming_.destinations;
  const auto found = names.find(value.bytes());
  return found == names.end() ? leftOut : stringText(found->second);
}

/// Entries of a structure element (ISO 32000-1, table 323).
std::optional<std::string> ObjectCopier::renamedTag(std::string_view key,
                                                    const Value& value) const {
  if (key == "/S" && value.isName() && !renaming_.roles.empty())
    return renamedName(value, renaming_.roles);
  if (key == "/ID" && value.isString()) return renamedString(value, renaming_.elementIdentifiers);
  if (key == "/C" && !renaming_.classes.empty() && (value.isName() || value.isArray()))
    return renamedNames(value, renaming_.classes);
  return std::nullopt;
}

/// A name, or names in an array; of what else the array holds only numbers stay.
std::string ObjectCopier::renamedNames(const Value& value, const Renaming::Names& names) const {
  if (value.isName()) return renamedName(value, names);
  std::string text = "[";
  for (const Value& item : value.items()) {
    const Value& plain = source_.resolved(item);
    if (plain.isName()) text += renamedName(plain, names);
    if (plain.integer()) appendWord(text, plain.text);
  }
  return text + "]";
}

std::string ObjectCopier::renamedStrings(const Value& value, const Renaming::Names& names) const {
  std::string text = "[";
  for (const Value& item : value.items()) {
    if (source_.resolved(item).isString()) text += renamedString(source_.resolved(item), names);
  }
  return text + "]";
}

}  // namespace pdf
