#include "platform/rendering/TailWatch.h"

#include <algorithm>

namespace rendering {
namespace {

bool isWhite(const QImage& band, int row) {
  const uchar* const first = band.constScanLine(row);
  const uchar* const end = first + qsizetype(band.width()) * band.depth() / 8;
  return std::all_of(first, end, [](uchar part) { return part == 0xff; });
}

}  // namespace

MaybeError TailWatch::began(QSize devicePixels) {
  row_ = 0;
  painted_ = false;
  return receiver_->began(devicePixels);
}

MaybeError TailWatch::rows(const QImage& band) {
  for (int row = qMax(0, firstRows_ - row_); row < band.height() && !painted_; ++row) {
    painted_ = !isWhite(band, row);
  }
  row_ += band.height();
  return receiver_->rows(band);
}

}  // namespace rendering
