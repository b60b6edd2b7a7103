#include <algorithm>

#include "platform/rendering/TextLayer.h"

namespace rendering {

double pageBreakBefore(const std::vector<RowInterval>& rows, double top, double bottom) {
  // Disjoint and sorted: only the interval that begins last above the edge can reach over it.
  const auto below = std::lower_bound(rows.begin(), rows.end(), bottom,
                                      [](const RowInterval& row, double y) { return row.top < y; });
  if (below == rows.begin()) return bottom;
  const RowInterval& last = *std::prev(below);
  if (last.bottom <= bottom) return bottom;
  const bool leavesHalfAPage = last.top >= top + (bottom - top) / 2;
  return leavesHalfAPage ? last.top : bottom;
}

}  // namespace rendering
