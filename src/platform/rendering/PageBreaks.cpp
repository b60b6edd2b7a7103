#include <algorithm>

#include "platform/rendering/TextLayer.h"

namespace rendering {
namespace {

using Row = std::vector<RowInterval>::const_iterator;

qsizetype cutsAt(Row first, Row last, double y) {
  return std::count_if(first, last,
                       [y](const RowInterval& row) { return row.top < y && y < row.bottom; });
}

Row firstFrom(const std::vector<RowInterval>& rows, double y) {
  return std::lower_bound(rows.begin(), rows.end(), y,
                          [](const RowInterval& row, double edge) { return row.top < edge; });
}

}  // namespace

double pageBreakBefore(const std::vector<RowInterval>& rows, double top, double bottom) {
  const double height = bottom - top;
  // What begins more than a page above and still reaches here is cut somewhere in any case.
  const Row first = firstFrom(rows, top - height);
  const Row last = firstFrom(rows, bottom);
  double best = bottom;
  qsizetype fewest = cutsAt(first, last, bottom);
  // From below: the lowest of equally good places wins. Columns side by side may leave none that
  // cuts nothing.
  for (Row row = last; row != first && fewest > 0;) {
    --row;
    if (row->top < top + height / 2) break;
    const qsizetype cuts = cutsAt(first, last, row->top);
    if (cuts >= fewest) continue;
    fewest = cuts;
    best = row->top;
  }
  return best;
}

}  // namespace rendering
