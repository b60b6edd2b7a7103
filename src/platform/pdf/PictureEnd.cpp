#include "platform/pdf/PictureEnd.h"

#include <algorithm>

#include "platform/pdf/internal/StripRows.h"

namespace pdf {
namespace {

constexpr int bytesPerPixel = 3;
constexpr char white = '\xFF';

}  // namespace

int whiteRowsAtEnd(const imaging::PictureStrips& picture) {
  QFile file(picture.path);
  if (picture.strips.empty() || !file.open(QIODevice::ReadOnly)) return 0;
  const qsizetype rowSize = qsizetype{picture.pixels.width()} * bytesPerPixel;
  int found = 0;
  for (auto strip = picture.strips.rbegin(); strip != picture.strips.rend(); ++strip) {
    const auto rows = allRows(file, *strip, picture.pixels.width());
    if (!rows) return 0;
    const auto last =
        std::find_if(rows->rbegin(), rows->rend(), [](char byte) { return byte != white; });
    found += static_cast<int>((last - rows->rbegin()) / rowSize);
    if (last != rows->rend()) break;
  }
  return found;
}

}  // namespace pdf
