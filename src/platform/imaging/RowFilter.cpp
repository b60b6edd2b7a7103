#include "platform/imaging/RowFilter.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace imaging {

namespace {

enum FilterType : uchar { None = 0, Sub = 1, Up = 2 };

constexpr size_t channels = 3;
/// Text with soft edges in several colours stays below, a strip of a photograph comes to three
/// times as many.
constexpr int mostColoursOfFlatRow = 256;

/// Screens are mostly text on flat grounds: there a row packs best as it is, since the packer finds
/// the same letters again. Photographs pack better as differences; they are told by their many
/// colours, counted here by a hash of 10 bits.
bool hasFewColours(const uchar* row, size_t size) {
  quint64 seen[16] = {};
  for (size_t i = 0; i < size; i += channels) {
    const quint32 colour = row[i] | quint32(row[i + 1]) << 8 | quint32(row[i + 2]) << 16;
    const quint32 hash = (colour * 2'654'435'761u) >> 22;
    seen[hash >> 6] |= quint64(1) << (hash & 63);
  }
  int count = 0;
  for (const quint64 bits : seen)
    count += std::popcount(bits);
  return count <= mostColoursOfFlatRow;
}

/// The sum of the differences' absolute values: the smaller, the better they pack.
size_t cost(const uchar* differences, size_t size) {
  size_t sum = 0;
  for (size_t i = 0; i < size; ++i) {
    sum += size_t(std::abs(int(static_cast<signed char>(differences[i]))));
  }
  return sum;
}

}  // namespace

RowFilter::RowFilter(int width) : above_(size_t(width) * channels), differences_(above_.size()) {}

void RowFilter::filter(const uchar* row, uchar* filtered) {
  const size_t size = above_.size();
  if (hasRowAbove_ && std::memcmp(row, above_.data(), size) == 0) {
    filtered[0] = Up;
    std::memset(filtered + 1, 0, size);
    return;
  }
  if (hasFewColours(row, size)) {
    filtered[0] = None;
    std::memcpy(filtered + 1, row, size);
  } else {
    writeDifferences(row, filtered);
  }
  std::memcpy(above_.data(), row, size);
  hasRowAbove_ = true;
}

void RowFilter::writeDifferences(const uchar* row, uchar* filtered) {
  const size_t size = above_.size();
  filtered[0] = Sub;
  std::copy_n(row, channels, filtered + 1);
  for (size_t i = channels; i < size; ++i)
    filtered[i + 1] = uchar(row[i] - row[i - channels]);
  if (!hasRowAbove_) return;
  for (size_t i = 0; i < size; ++i)
    differences_[i] = uchar(row[i] - above_[i]);
  if (cost(differences_.data(), size) >= cost(filtered + 1, size)) return;
  filtered[0] = Up;
  std::memcpy(filtered + 1, differences_.data(), size);
}

}  // namespace imaging
