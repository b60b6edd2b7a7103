#include "platform/imaging/RowUnfilter.h"

#include <cstdlib>

namespace imaging {
namespace {

enum FilterType : uchar { None, Sub, Up, Average, Paeth };

/// Of the three neighbours the one that is nearest to left + above - corner.
uchar paethPredictor(int left, int above, int corner) {
  const int toLeft = std::abs(above - corner);
  const int toAbove = std::abs(left - corner);
  const int toCorner = std::abs(left + above - 2 * corner);
  if (toLeft <= toAbove && toLeft <= toCorner) return uchar(left);
  return uchar(toAbove <= toCorner ? above : corner);
}

void undoUp(uchar* row, const uchar* above, qsizetype size) {
  for (qsizetype i = 0; i < size; ++i)
    row[i] = uchar(row[i] + above[i]);
}

/// The filters that look at the pixel to the left, which is zero for the first one.
template <class Predictor>
void undo(uchar* row, const uchar* above, qsizetype size, qsizetype pixel, Predictor predict) {
  for (qsizetype i = 0; i < size; ++i) {
    const uchar left = i < pixel ? 0 : row[i - pixel];
    const uchar corner = i < pixel ? 0 : above[i - pixel];
    row[i] = uchar(row[i] + predict(left, above[i], corner));
  }
}

}  // namespace

bool undoRowFilter(uchar type, uchar* row, const uchar* above, qsizetype size, qsizetype pixel) {
  switch (type) {
    case None:
      return true;
    case Sub:
      undo(row, above, size, pixel, [](int left, int, int) { return left; });
      return true;
    case Up:
      undoUp(row, above, size);
      return true;
    case Average:
      undo(row, above, size, pixel, [](int left, int up, int) { return (left + up) / 2; });
      return true;
    case Paeth:
      undo(row, above, size, pixel, paethPredictor);
      return true;
  }
  return false;
}

}  // namespace imaging
