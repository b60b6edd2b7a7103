#include "platform/imaging/RowFilter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace imaging {

namespace {

enum FilterType : uchar { None = 0, Sub = 1, Up = 2, Paeth = 4 };

constexpr size_t channels = 3;

/// Screens are mostly text on flat grounds: there a row packs best as it is, since the packer finds
/// the same letters again. Photographs pack better as differences; they are told by having few
/// pixels that equal the one before.
bool looksFlat(const uchar* row, size_t size) {
  size_t equal = 0;
  for (size_t i = channels; i < size; ++i)
    equal += row[i] == row[i - channels];
  return equal * 3 >= size;
}

void subtractLeft(const uchar* row, size_t size, uchar* out) {
  std::copy_n(row, channels, out);
  for (size_t i = channels; i < size; ++i)
    out[i] = uchar(row[i] - row[i - channels]);
}

uchar paethPredictor(int left, int up, int upLeft) {
  const int fromLeft = std::abs(up - upLeft);
  const int fromUp = std::abs(left - upLeft);
  const int fromUpLeft = std::abs(left + up - 2 * upLeft);
  if (fromLeft <= fromUp && fromLeft <= fromUpLeft) return uchar(left);
  return uchar(fromUp <= fromUpLeft ? up : upLeft);
}

void subtractPaeth(const uchar* row, const uchar* above, size_t size, uchar* out) {
  for (size_t i = 0; i < channels; ++i)
    out[i] = uchar(row[i] - above[i]);
  for (size_t i = channels; i < size; ++i) {
    out[i] = uchar(row[i] - paethPredictor(row[i - channels], above[i], above[i - channels]));
  }
}

/// The sum of the differences' absolute values: the smaller, the better they pack.
size_t cost(const uchar* differences, size_t size) {
  size_t sum = 0;
  for (size_t i = 0; i < size; ++i)
    sum += size_t(std::abs(int(static_cast<signed char>(differences[i]))));
  return sum;
}

}  // namespace

RowFilter::RowFilter(int width) : above_(size_t(width) * channels), differences_(above_.size()) {}

void RowFilter::filter(const uchar* row, uchar* filtered) {
  const size_t size = differences_.size();
  if (hasRowAbove_ && std::memcmp(row, above_.data(), size) == 0) {
    filtered[0] = Up;
    std::memset(filtered + 1, 0, size);
    return;
  }
  if (looksFlat(row, size)) {
    filtered[0] = None;
    std::memcpy(filtered + 1, row, size);
  } else {
    filterWithNeighbours(row, filtered);
  }
  std::memcpy(above_.data(), row, size);
  hasRowAbove_ = true;
}

void RowFilter::filterWithNeighbours(const uchar* row, uchar* filtered) {
  filtered[0] = Sub;
  subtractLeft(row, differences_.size(), filtered + 1);
  if (!hasRowAbove_) return;
  subtractPaeth(row, above_.data(), differences_.size(), differences_.data());
  if (cost(differences_.data(), differences_.size()) >= cost(filtered + 1, differences_.size()))
    return;
  filtered[0] = Paeth;
  std::memcpy(filtered + 1, differences_.data(), differences_.size());
}

}  // namespace imaging
