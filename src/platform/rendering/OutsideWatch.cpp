#include "platform/rendering/OutsideWatch.h"

#include <algorithm>

namespace rendering {
namespace {

bool isWhite(const QImage& band, int row, int firstColumn) {
  const int bytesPerPixel = band.depth() / 8;
  const uchar* const bytes = band.constScanLine(row);
  return std::all_of(bytes + qsizetype(firstColumn) * bytesPerPixel,
                     bytes + qsizetype(band.width()) * bytesPerPixel,
                     [](uchar part) { return part == 0xff; });
}

}  // namespace

MaybeError OutsideWatch::began(QSize devicePixels) {
  row_ = 0;
  painted_ = false;
  reachesOutside_ =
      devicePixels.width() > corner_.width() || devicePixels.height() > corner_.height();
  return receiver_->began(devicePixels);
}

MaybeError OutsideWatch::rows(const QImage& band) {
  for (int row = 0; row < band.height() && !painted_; ++row) {
    const int inside = row_ + row < corner_.height() ? qMin(corner_.width(), band.width()) : 0;
    painted_ = !isWhite(band, row, inside);
  }
  row_ += band.height();
  return receiver_->rows(band);
}

}  // namespace rendering
