#include "platform/pdf/internal/merge/Layers.h"

#include <algorithm>

namespace pdf {
namespace {

constexpr const char* listKeys[] = {"/ON", "/OFF", "/Order", "/RBGroups", "/Locked", "/AS"};

using Texts = std::vector<std::string>;

Texts copyItems(const Value& array, ObjectCopier& copier) {
  Texts copies;
  if (!array.isArray()) return copies;
  for (const Value& item : array.items())
    copies.push_back(copier.copy(item));
  return copies;
}

/// The joined document is on by default, so groups that were off without being named are named.
Texts groupsOff(const Texts& groups, const Texts& on) {
  Texts off;
  for (const std::string& group : groups) {
    if (std::find(on.begin(), on.end(), group) == on.end()) off.push_back(group);
  }
  return off;
}

void append(Texts& joined, const Texts& more) {
  joined.insert(joined.end(), more.begin(), more.end());
}

std::string arrayText(const Texts& items) {
  std::string text = "[";
  for (const std::string& item : items)
    text += item + ' ';
  return text + "]";
}

}  // namespace

void copyLayers(const SourceFile& source, ObjectCopier& copier, Layers& joined) {
  const Value& properties = source.rootEntry("/OCProperties");
  const Texts groups = copyItems(source.resolved(properties["/OCGs"]), copier);
  append(joined.groups, groups);
  const Value& configuration = source.resolved(properties["/D"]);
  if (groups.empty() || !configuration.isDictionary()) return;
  std::map<std::string, Texts> lists;
  for (const char* key : listKeys)
    lists[key] = copyItems(source.resolved(configuration[key]), copier);
  if (source.resolved(configuration["/BaseState"]).isName("/OFF"))
    lists["/OFF"] = groupsOff(groups, lists["/ON"]);
  for (const auto& [key, items] : lists)
    append(joined.lists[key], items);
}

std::string layerProperties(const Layers& layers) {
  if (layers.groups.empty()) return {};
  std::string configuration;
  for (const auto& [key, items] : layers.lists) {
    if (!items.empty()) configuration += key + arrayText(items);
  }
  return "<</OCGs" + arrayText(layers.groups) + "/D<<" + configuration + ">>>>";
}

}  // namespace pdf
