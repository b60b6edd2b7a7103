#include "platform/pdf/internal/merge/Outlines.h"

#include <optional>
#include <set>

namespace pdf {
namespace {

/// Counts the items that show when the outline is open, and finds out whether the chains of items
/// end.
class OutlineWalk {
 public:
  explicit OutlineWalk(const SourceFile& source) : source_(source) {}

  /// Nothing when the outline is damaged: an item twice, or one that is no object of its own.
  std::optional<int> visibleItems(const Value& first) {
    std::vector<Level> levels{{first, true}};
    while (!levels.empty()) {
      const Value next = levels.back().next;
      const Value& item = source_.resolved(next);
      if (item.isNull()) {
        levels.pop_back();
        continue;
      }
      if (!item.isDictionary() || !next.isReference() || !seen_.insert(next.reference).second)
        return std::nullopt;
      const bool shows = levels.back().shows;
      if (shows) ++visible_;
      levels.back().next = item["/Next"];
      const bool isOpen = source_.resolved(item["/Count"]).integer().value_or(0) > 0;
      levels.push_back({item["/First"], shows && isOpen});
    }
    return visible_;
  }

 private:
  struct Level {
    Value next;
    bool shows;
  };
  const SourceFile& source_;
  std::set<int> seen_;
  int visible_ = 0;
};

}  // namespace

DocumentHeading outlineHeading(CompactFile& target, const SourceFile& source, ObjectCopier& copier,
                               const std::string& title, int page) {
  DocumentHeading heading{
      target.reserve(), "/Title" + title + "/Dest[" + referenceText(page) + "/XYZ null null null]"};
  const Value& reference = source.root()["/Outlines"];
  const Value& outline = source.resolved(reference);
  if (!outline.isDictionary() || !reference.isReference()) return heading;
  const auto items = OutlineWalk(source).visibleItems(outline["/First"]);
  if (!items || *items == 0 || !source.resolved(outline["/Last"]).isDictionary()) return heading;
  copier.map(reference.reference, heading.object);
  heading.entries += "/First " + copier.copy(outline["/First"]) + "/Last " +
                     copier.copy(outline["/Last"]) + "/Count " + std::to_string(-*items);
  return heading;
}

int writeOutline(CompactFile& target, const std::vector<DocumentHeading>& headings) {
  const int outline = target.reserve();
  for (size_t index = 0; index < headings.size(); ++index) {
    std::string text = "<<" + headings[index].entries + "/Parent " + referenceText(outline);
    if (index > 0) text += "/Prev " + referenceText(headings[index - 1].object);
    if (index + 1 < headings.size()) text += "/Next " + referenceText(headings[index + 1].object);
    target.writeObject(headings[index].object, text + ">>");
  }
  target.writeObject(outline, "<</Type/Outlines/First " + referenceText(headings.front().object) +
                                  "/Last " + referenceText(headings.back().object) + "/Count " +
                                  std::to_string(headings.size()) + ">>");
  return outline;
}

}  // namespace pdf
