#pragma once

#include <QtGlobal>
#include <vector>

namespace imaging {

/// Prepares rows of 8-bit red, green and blue for compression (PNG, third edition, 9).
class RowFilter {
 public:
  explicit RowFilter(int width);

  /// Filter byte and data: 1 + 3 x width bytes.
  size_t filteredSize() const { return above_.size() + 1; }
  /// From the next row on, nothing refers to rows that were filtered before.
  void startAfresh() { hasRowAbove_ = false; }
  /// Writes `filteredSize()` bytes to `filtered`. `row` holds 3 x width bytes.
  void filter(const uchar* row, uchar* filtered);

 private:
  void writeDifferences(const uchar* row, uchar* filtered);

  std::vector<uchar> above_;
  std::vector<uchar> differences_;
  bool hasRowAbove_ = false;
};

}  // namespace imaging
