#include "platform/pdf/internal/merge/Trees.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace pdf {
namespace {

constexpr size_t entriesPerLeaf = 64;
constexpr int deepest = 64;

template <class Key>
struct TreeKind;

template <>
struct TreeKind<std::string> {
  static constexpr const char* entries = "/Names";
  static std::optional<std::string> key(QPDFObjectHandle object) {
    return object.isString() ? std::optional(object.getStringValue()) : std::nullopt;
  }
  static QPDFObjectHandle object(const std::string& key) {
    return QPDFObjectHandle::newString(key);
  }
};

template <>
struct TreeKind<long long> {
  static constexpr const char* entries = "/Nums";
  static std::optional<long long> key(QPDFObjectHandle object) {
    return object.isInteger() ? std::optional(object.getIntValue()) : std::nullopt;
  }
  static QPDFObjectHandle object(long long key) { return QPDFObjectHandle::newInteger(key); }
};

template <class Key>
class Reader {
 public:
  std::map<Key, QPDFObjectHandle> read(QPDFObjectHandle root) {
    readNode(root, 0);
    return std::move(found_);
  }

 private:
  void readNode(QPDFObjectHandle node, int depth) {
    if (!node.isDictionary() || depth > deepest) return;
    if (node.isIndirect() && !visited_.insert(node.getObjGen()).second) return;
    QPDFObjectHandle entries = node.getKey(TreeKind<Key>::entries), kids = node.getKey("/Kids");
    if (entries.isArray()) readEntries(entries.getArrayAsVector());
    if (!kids.isArray()) return;
    for (const QPDFObjectHandle& kid : kids.getArrayAsVector())
      readNode(kid, depth + 1);
  }

  void readEntries(const std::vector<QPDFObjectHandle>& entries) {
    for (size_t index = 0; index + 1 < entries.size(); index += 2) {
      if (const auto key = TreeKind<Key>::key(entries[index]))
        found_.emplace(*key, entries[index + 1]);
    }
  }

  std::map<Key, QPDFObjectHandle> found_;
  std::set<QPDFObjGen> visited_;
};

/// Leaves below the root: two levels hold what documents have.
template <class Key>
QPDFObjectHandle write(QPDF& document, const std::map<Key, QPDFObjectHandle>& entries) {
  QPDFObjectHandle kids = QPDFObjectHandle::newArray();
  for (auto entry = entries.begin(); entry != entries.end();) {
    std::vector<QPDFObjectHandle> pairs;
    const Key first = entry->first;
    Key last = first;
    for (; entry != entries.end() && pairs.size() < 2 * entriesPerLeaf; ++entry) {
      last = entry->first;
      pairs.push_back(TreeKind<Key>::object(last));
      pairs.push_back(entry->second);
    }
    QPDFObjectHandle leaf = QPDFObjectHandle::newDictionary();
    leaf.replaceKey("/Limits", QPDFObjectHandle::newArray(std::vector<QPDFObjectHandle>{
                                   TreeKind<Key>::object(first), TreeKind<Key>::object(last)}));
    leaf.replaceKey(TreeKind<Key>::entries, QPDFObjectHandle::newArray(pairs));
    kids.appendItem(document.makeIndirectObject(leaf));
  }
  QPDFObjectHandle root = QPDFObjectHandle::newDictionary();
  root.replaceKey("/Kids", kids);
  return document.makeIndirectObject(root);
}

}  // namespace

NameTree readNameTree(QPDFObjectHandle root) {
  return Reader<std::string>().read(root);
}

NumberTree readNumberTree(QPDFObjectHandle root) {
  return Reader<long long>().read(root);
}

QPDFObjectHandle writeNameTree(QPDF& document, const NameTree& entries) {
  return write(document, entries);
}

QPDFObjectHandle writeNumberTree(QPDF& document, const NumberTree& entries) {
  return write(document, entries);
}

}  // namespace pdf
