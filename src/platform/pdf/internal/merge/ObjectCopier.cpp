#include "platform/pdf/internal/merge/ObjectCopier.h"

namespace pdf {
namespace {

/// qpdf reads no deeper nesting of direct objects.
constexpr int deepest = 500;

bool hasType(QPDFObjectHandle object, const char* first, const char* second, const char* third) {
  if (!object.isDictionary()) return false;
  QPDFObjectHandle type = object.getKey("/Type");
  if (!type.isName()) return false;
  const std::string name = type.getName();
  return name == first || name == second || name == third;
}

/// The entries that say how a stream's bytes are packed; they are read together with the bytes.
QPDFObjectHandle packing(QPDFObjectHandle dictionary) {
  QPDFObjectHandle entries = QPDFObjectHandle::newDictionary();
  for (const char* key : {"/Filter", "/DecodeParms"}) {
    if (dictionary.hasKey(key)) entries.replaceKey(key, dictionary.getKey(key));
  }
  return entries;
}

/// The length is written anew with the bytes.
bool isPacking(const std::string& key) {
  return key == "/Filter" || key == "/DecodeParms" || key == "/Length";
}

QPDFObjectHandle renamedName(QPDFObjectHandle value, const Renaming::Names& names) {
  const auto found = names.find(value.getName());
  return found == names.end() ? value : QPDFObjectHandle::newName(found->second);
}

QPDFObjectHandle renamedString(QPDFObjectHandle value, const Renaming::Names& names) {
  const auto found = names.find(value.getStringValue());
  return found == names.end() ? value : QPDFObjectHandle::newString(found->second);
}

/// A name, or names in an array; what else the array holds stays.
QPDFObjectHandle renamedNames(QPDFObjectHandle value, const Renaming::Names& names) {
  if (value.isName()) return renamedName(value, names);
  QPDFObjectHandle array = QPDFObjectHandle::newArray();
  for (QPDFObjectHandle& item : value.getArrayAsVector()) {
    array.appendItem(item.isName()       ? renamedName(item, names)
                     : item.isIndirect() ? QPDFObjectHandle::newNull()
                                         : item);
  }
  return array;
}

QPDFObjectHandle renamedStrings(QPDFObjectHandle value, const Renaming::Names& names) {
  QPDFObjectHandle array = QPDFObjectHandle::newArray();
  for (QPDFObjectHandle& item : value.getArrayAsVector()) {
    if (item.isString()) array.appendItem(renamedString(item, names));
  }
  return array;
}

}  // namespace

QPDFObjectHandle ObjectCopier::copy(QPDFObjectHandle source) {
  return copyValue(source, 0);
}

void ObjectCopier::copyEntries(QPDFObjectHandle source, QPDFObjectHandle target,
                               const std::set<std::string>& except) {
  const Entries entries = source.getDictAsMap();
  for (const auto& [key, value] : entries) {
    if (except.count(key) > 0) continue;
    const auto other = renamed(key, value, entries);
    target.replaceKey(key, other ? *other : copyValue(value, 0));
  }
}

void ObjectCopier::finish() {
  while (!pending_.empty()) {
    Pending next = pending_.front();
    pending_.pop_front();
    if (next.copy.isStream()) {
      copyEntries(next.source, next.copy.getDict(), {});
    } else if (next.source.isDictionary()) {
      target_.replaceObject(next.copy.getObjGen(), copyDictionary(next.source, 0));
    } else if (next.source.isArray()) {
      target_.replaceObject(next.copy.getObjGen(), copyArray(next.source, 0));
    }
  }
}

QPDFObjectHandle ObjectCopier::copyReference(QPDFObjectHandle source) {
  const auto known = copies_.find(source.getObjGen());
  if (known != copies_.end()) return known->second;
  std::optional<QByteArray> digest;
  if (ContentDigest::isResource(source)) digest = digest_.of(source);
  if (digest) {
    if (const auto shared = pool_.find(*digest)) {
      map(source, *shared);
      return *shared;
    }
  }
  const QPDFObjectHandle copy = copyIndirect(source);
  map(source, copy);
  if (digest) pool_.add(*digest, copy);
  return copy;
}

QPDFObjectHandle ObjectCopier::copyIndirect(QPDFObjectHandle source) {
  if (source.isStream()) return copyStream(source);
  // Pages have their copies; one that is met here belongs to no page tree.
  if (hasType(source, "/Page", "/Pages", "/Catalog")) return QPDFObjectHandle::newNull();
  if (!source.isDictionary() && !source.isArray())
    return source.isScalar() ? source.shallowCopy() : source;
  const QPDFObjectHandle copy = QPDFObjectHandle::newReserved(&target_);
  pending_.push_back({source, copy});
  return copy;
}

/// The bytes stay where they are until the target is written.
QPDFObjectHandle ObjectCopier::copyStream(QPDFObjectHandle source) {
  QPDFObjectHandle dictionary = source.getDict();
  source.replaceDict(packing(dictionary));
  const QPDFObjectHandle copy = target_.copyForeignObject(source);
  QPDFObjectHandle own = QPDFObjectHandle::newDictionary();
  for (const auto& [key, value] : dictionary.getDictAsMap()) {
    if (!isPacking(key)) own.replaceKey(key, value);
  }
  pending_.push_back({own, copy});
  return copy;
}

QPDFObjectHandle ObjectCopier::copyValue(QPDFObjectHandle source, int depth) {
  if (source.isIndirect()) return copyReference(source);
  if (depth > deepest) return QPDFObjectHandle::newNull();
  if (source.isArray()) return copyArray(source, depth + 1);
  if (source.isDictionary()) return copyDictionary(source, depth + 1);
  return source.shallowCopy();
}

QPDFObjectHandle ObjectCopier::copyArray(QPDFObjectHandle source, int depth) {
  std::vector<QPDFObjectHandle> items = source.getArrayAsVector();
  for (QPDFObjectHandle& item : items)
    item = copyValue(item, depth);
  return QPDFObjectHandle::newArray(items);
}

QPDFObjectHandle ObjectCopier::copyDictionary(QPDFObjectHandle source, int depth) {
  const Entries entries = source.getDictAsMap();
  Entries copies;
  for (const auto& [key, value] : entries) {
    const auto other = renamed(key, value, entries);
    copies.emplace_hint(copies.end(), key, other ? *other : copyValue(value, depth));
  }
  return QPDFObjectHandle::newDictionary(copies);
}

std::optional<QPDFObjectHandle> ObjectCopier::renamed(const std::string& key,
                                                      QPDFObjectHandle value,
                                                      const Entries& entries) {
  if (key == "/Dest") return renamedDestination(value);
  if (key == "/StructParent" || key == "/StructParents") {
    if (!value.isInteger() || !renaming_.tagNumberOffset) return QPDFObjectHandle::newNull();
    return QPDFObjectHandle::newInteger(value.getIntValue() + *renaming_.tagNumberOffset);
  }
  const auto kind = entries.find("/S");
  if (kind == entries.end()) {
    const bool headers = key == "/Headers" && value.isArray();
    return headers ? std::optional(renamedStrings(value, renaming_.elementIdentifiers))
                   : std::nullopt;
  }
  QPDFObjectHandle name = kind->second;
  if (key == "/D" && name.isName() && name.getName() == "/GoTo") return renamedDestination(value);
  return entries.count("/P") > 0 ? renamedTag(key, value) : std::nullopt;
}

std::optional<QPDFObjectHandle> ObjectCopier::renamedDestination(QPDFObjectHandle value) const {
  if (!value.isName() && !value.isString()) return std::nullopt;
  const Renaming::Names& names =
      value.isName() ? renaming_.oldStyleDestinations : renaming_.destinations;
  const auto found = names.find(value.isName() ? value.getName() : value.getStringValue());
  return found == names.end() ? QPDFObjectHandle::newNull()
                              : QPDFObjectHandle::newString(found->second);
}

/// Entries of a structure element (ISO 32000-1, table 323).
std::optional<QPDFObjectHandle> ObjectCopier::renamedTag(const std::string& key,
                                                         QPDFObjectHandle value) const {
  if (key == "/S" && value.isName()) return renamedName(value, renaming_.roles);
  if (key == "/ID" && value.isString()) return renamedString(value, renaming_.elementIdentifiers);
  if (key == "/C" && !renaming_.classes.empty() && (value.isName() || value.isArray())) {
    return renamedNames(value, renaming_.classes);
  }
  return std::nullopt;
}

}  // namespace pdf
