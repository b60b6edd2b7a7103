#include "platform/pdf/internal/merge/Outlines.h"

#include <optional>

#include "platform/pdf/internal/QpdfText.h"

namespace pdf {
namespace {

/// Counts the items that show when the outline is open, and finds out whether the chains of items
/// end.
class OutlineWalk {
 public:
  /// Nothing when the outline is damaged: an item twice, or one that is no object of its own.
  std::optional<int> visibleItems(QPDFObjectHandle first) {
    std::vector<Level> levels{{first, true}};
    while (!levels.empty()) {
      QPDFObjectHandle item = levels.back().next;
      if (item.isNull()) {
        levels.pop_back();
        continue;
      }
      if (!item.isDictionary() || !item.isIndirect() || !seen_.insert(item.getObjGen()).second)
        return std::nullopt;
      const bool shows = levels.back().shows;
      if (shows) ++visible_;
      levels.back().next = item.getKey("/Next");
      QPDFObjectHandle count = item.getKey("/Count");
      levels.push_back(
          {item.getKey("/First"), shows && count.isInteger() && count.getIntValue() > 0});
    }
    return visible_;
  }

 private:
  struct Level {
    QPDFObjectHandle next;
    bool shows;
  };
  std::set<QPDFObjGen> seen_;
  int visible_ = 0;
};

QPDFObjectHandle topOf(QPDFObjectHandle page) {
  return QPDFObjectHandle::newArray(std::vector<QPDFObjectHandle>{
      page, QPDFObjectHandle::newName("/XYZ"), QPDFObjectHandle::newNull(),
      QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull()});
}

}  // namespace

QPDFObjectHandle outlineHeading(QPDF& target, QPDF& source, ObjectCopier& copier,
                                const QString& title, QPDFObjectHandle page) {
  QPDFObjectHandle heading = target.makeIndirectObject(QPDFObjectHandle::newDictionary());
  heading.replaceKey("/Title", textObject(title));
  heading.replaceKey("/Dest", topOf(page));
  QPDFObjectHandle outline = source.getRoot().getKey("/Outlines");
  if (!outline.isDictionary() || !outline.isIndirect()) return heading;
  const auto items = OutlineWalk().visibleItems(outline.getKey("/First"));
  if (!items || *items == 0 || !outline.getKey("/Last").isDictionary()) return heading;
  copier.map(outline, heading);
  heading.replaceKey("/First", copier.copy(outline.getKey("/First")));
  heading.replaceKey("/Last", copier.copy(outline.getKey("/Last")));
  heading.replaceKey("/Count", QPDFObjectHandle::newInteger(-*items));
  return heading;
}

void writeOutline(QPDF& document, const std::vector<QPDFObjectHandle>& headings) {
  if (headings.empty()) return;
  QPDFObjectHandle outline = document.makeIndirectObject(QPDFObjectHandle::newDictionary());
  outline.replaceKey("/Type", QPDFObjectHandle::newName("/Outlines"));
  outline.replaceKey("/First", headings.front());
  outline.replaceKey("/Last", headings.back());
  outline.replaceKey("/Count", QPDFObjectHandle::newInteger(static_cast<int>(headings.size())));
  for (size_t index = 0; index < headings.size(); ++index) {
    QPDFObjectHandle heading = headings[index];
    heading.replaceKey("/Parent", outline);
    if (index > 0) heading.replaceKey("/Prev", headings[index - 1]);
    if (index + 1 < headings.size()) heading.replaceKey("/Next", headings[index + 1]);
  }
  document.getRoot().replaceKey("/Outlines", outline);
}

}  // namespace pdf
