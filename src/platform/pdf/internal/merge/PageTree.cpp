#include <algorithm>
#include <set>

#include "platform/pdf/internal/merge/SourceFile.h"

namespace pdf {
namespace {

constexpr int deepest = 100;
constexpr std::string_view inheritable[] = {"/Resources", "/MediaBox", "/CropBox", "/Rotate"};

class PageWalk {
 public:
  explicit PageWalk(const SourceFile& source) : source_(source) {}

  std::vector<SourcePage> pages() {
    walk(source_.root()["/Pages"], {}, 0);
    return std::move(pages_);
  }

 private:
  void walk(const Value& node, std::vector<Value> inherited, int depth) {
    const Value& entries = source_.resolved(node);
    if (!node.isReference() || !entries.isDictionary() || depth > deepest ||
        !seen_.insert(node.reference).second)
      throw UnsoundFile("the page tree is damaged");
    const Value& kids = source_.resolved(entries["/Kids"]);
    const bool isPage = entries["/Type"].isName("/Page");
    if (isPage == kids.isArray()) throw UnsoundFile("the page tree is damaged");
    if (isPage) {
      pages_.push_back({node.reference, missing(entries, inherited)});
      return;
    }
    inherit(entries, inherited);
    for (const Value& kid : kids.items())
      walk(kid, inherited, depth + 1);
  }

  /// What stands nearer to the page is found first.
  static void inherit(const Value& entries, std::vector<Value>& inherited) {
    for (size_t index = 0; index < entries.count; index += 2) {
      const Value& key = entries.items()[index];
      const bool passesOn = std::find(std::begin(inheritable), std::end(inheritable), key.text) !=
                            std::end(inheritable);
      if (passesOn) inherited.insert(inherited.begin(), {key, entries.items()[index + 1]});
    }
  }

  std::vector<Value> missing(const Value& page, const std::vector<Value>& inherited) const {
    std::vector<Value> entries;
    for (const std::string_view key : inheritable) {
      if (!source_.resolved(page[key]).isNull()) continue;
      for (size_t index = 0; index < inherited.size(); index += 2) {
        if (inherited[index].text != key) continue;
        entries.insert(entries.end(), {inherited[index], inherited[index + 1]});
        break;
      }
    }
    return entries;
  }

  const SourceFile& source_;
  std::set<int> seen_;
  std::vector<SourcePage> pages_;
};

}  // namespace

std::vector<SourcePage> readPages(const SourceFile& source) {
  return PageWalk(source).pages();
}

}  // namespace pdf
