#include "platform/pdf/internal/merge/Trees.h"

#include <optional>
#include <set>

namespace pdf {
namespace {

constexpr size_t entriesPerLeaf = 64;
constexpr int deepest = 64;

template <class Key>
struct TreeKind;

template <>
struct TreeKind<std::string> {
  static constexpr std::string_view entries = "/Names";
  static std::optional<std::string> key(const Value& value) {
    return value.isString() ? std::optional(value.bytes()) : std::nullopt;
  }
  static std::string text(const std::string& key) { return stringText(key); }
};

template <>
struct TreeKind<long long> {
  static constexpr std::string_view entries = "/Nums";
  static std::optional<long long> key(const Value& value) { return value.integer(); }
  static std::string text(long long key) { return std::to_string(key); }
};

template <class Key>
class Reader {
 public:
  explicit Reader(const SourceFile& source) : source_(source) {}

  std::map<Key, Value> read(const Value& root) {
    readNode(root, 0);
    return std::move(found_);
  }

 private:
  void readNode(const Value& node, int depth) {
    const Value& entries = source_.resolved(node);
    if (!entries.isDictionary() || depth > deepest) return;
    if (node.isReference() && !visited_.insert(node.reference).second) return;
    readEntries(source_.resolved(entries[TreeKind<Key>::entries]));
    const Value& kids = source_.resolved(entries["/Kids"]);
    if (!kids.isArray()) return;
    for (const Value& kid : kids.items())
      readNode(kid, depth + 1);
  }

  void readEntries(const Value& entries) {
    if (!entries.isArray()) return;
    for (size_t index = 0; index + 1 < entries.count; index += 2) {
      if (const auto key = TreeKind<Key>::key(source_.resolved(entries.items()[index])))
        found_.emplace_hint(found_.end(), *key, entries.items()[index + 1]);
    }
  }

  const SourceFile& source_;
  std::map<Key, Value> found_;
  std::set<int> visited_;
};

/// Leaves below the root: two levels hold what documents have.
template <class Key>
int write(CompactFile& target, const std::map<Key, std::string>& entries) {
  using Kind = TreeKind<Key>;
  std::string kids;
  for (auto entry = entries.begin(); entry != entries.end();) {
    const std::string first = Kind::text(entry->first);
    std::string last, pairs;
    for (size_t count = 0; entry != entries.end() && count < entriesPerLeaf; ++entry, ++count) {
      last = Kind::text(entry->first);
      pairs += last + ' ' + entry->second + ' ';
    }
    std::string leaf = "<</Limits[" + first + ' ' + last + "]";
    leaf += Kind::entries;
    kids += referenceText(target.add(leaf + "[" + pairs + "]>>")) + ' ';
  }
  return target.add("<</Kids[" + kids + "]>>");
}

}  // namespace

NameTree readNameTree(const SourceFile& source, const Value& root) {
  return Reader<std::string>(source).read(root);
}

NumberTree readNumberTree(const SourceFile& source, const Value& root) {
  return Reader<long long>(source).read(root);
}

NameTree readDictionary(const Value& dictionary) {
  NameTree entries;
  if (!dictionary.isDictionary()) return entries;
  for (size_t index = 0; index < dictionary.count; index += 2)
    entries.emplace(dictionary.items()[index].bytes(), dictionary.items()[index + 1]);
  return entries;
}

int writeNameTree(CompactFile& target, const NameTexts& entries) {
  return write(target, entries);
}

int writeNumberTree(CompactFile& target, const NumberTexts& entries) {
  return write(target, entries);
}

}  // namespace pdf
