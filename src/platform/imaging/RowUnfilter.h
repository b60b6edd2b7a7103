#pragma once

#include <QtGlobal>

namespace imaging {

/// Undoes the filter of one row of a PNG picture in its place (PNG, third edition, 9.2). `type` is
/// the row's filter byte; `above` is the finished row above, of zeros for the first one; both rows
/// hold `size` bytes, with `pixel` bytes for each pixel. False: there is no such filter.
bool undoRowFilter(uchar type, uchar* row, const uchar* above, qsizetype size, qsizetype pixel);

}  // namespace imaging
