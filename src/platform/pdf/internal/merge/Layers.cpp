#include "platform/pdf/internal/merge/Layers.h"

namespace pdf {
namespace {

constexpr const char* listKeys[] = {"/ON", "/OFF", "/Order", "/RBGroups", "/Locked", "/AS"};

std::vector<QPDFObjectHandle> copyItems(QPDFObjectHandle array, ObjectCopier& copier) {
  std::vector<QPDFObjectHandle> copies;
  if (!array.isArray()) return copies;
  for (const QPDFObjectHandle& item : array.getArrayAsVector())
    copies.push_back(copier.copy(item));
  return copies;
}

bool isOffByDefault(QPDFObjectHandle configuration) {
  QPDFObjectHandle state = configuration.getKey("/BaseState");
  return state.isName() && state.getName() == "/OFF";
}

/// The joined document is on by default, so groups that were off without being named are named.
std::vector<QPDFObjectHandle> groupsOff(const Layers& layers) {
  std::set<QPDFObjGen> on;
  const auto listed = layers.lists.find("/ON");
  if (listed != layers.lists.end()) {
    for (const QPDFObjectHandle& group : listed->second)
      on.insert(group.getObjGen());
  }
  std::vector<QPDFObjectHandle> off;
  for (const QPDFObjectHandle& group : layers.groups) {
    if (on.count(group.getObjGen()) == 0) off.push_back(group);
  }
  return off;
}

}  // namespace

Layers copyLayers(QPDF& source, ObjectCopier& copier) {
  Layers layers;
  QPDFObjectHandle properties = source.getRoot().getKey("/OCProperties");
  if (!properties.isDictionary()) return layers;
  layers.groups = copyItems(properties.getKey("/OCGs"), copier);
  QPDFObjectHandle configuration = properties.getKey("/D");
  if (layers.groups.empty() || !configuration.isDictionary()) return layers;
  for (const char* key : listKeys)
    layers.lists[key] = copyItems(configuration.getKey(key), copier);
  if (isOffByDefault(configuration)) layers.lists["/OFF"] = groupsOff(layers);
  return layers;
}

void append(Layers& joined, const Layers& more) {
  joined.groups.insert(joined.groups.end(), more.groups.begin(), more.groups.end());
  for (const auto& [key, items] : more.lists) {
    std::vector<QPDFObjectHandle>& list = joined.lists[key];
    list.insert(list.end(), items.begin(), items.end());
  }
}

void writeLayers(QPDF& document, const Layers& layers) {
  if (layers.groups.empty()) return;
  QPDFObjectHandle configuration = QPDFObjectHandle::newDictionary();
  for (const auto& [key, items] : layers.lists) {
    if (!items.empty()) configuration.replaceKey(key, QPDFObjectHandle::newArray(items));
  }
  QPDFObjectHandle properties = QPDFObjectHandle::newDictionary();
  properties.replaceKey("/OCGs", QPDFObjectHandle::newArray(layers.groups));
  properties.replaceKey("/D", configuration);
  document.getRoot().replaceKey("/OCProperties", properties);
}

}  // namespace pdf
