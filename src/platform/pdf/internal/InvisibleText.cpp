#include "platform/pdf/internal/InvisibleText.h"

#include "platform/pdf/internal/VisualOrder.h"

namespace pdf {
namespace {

/// The space that ends a word stands beside its box, where the next word of the line follows.
QByteArray shownRun(const TextRun& run, const PictureSheet& sheet, InvisibleFont& font) {
  std::u32string line = visualOrder(run.text.simplified(), run.direction);
  QRectF documentRect = run.rect;
  if (documentRect.height() <= 0) documentRect.setHeight(run.fontSize);
  const QRectF area = sheet.place(documentRect);
  if (line.empty() || area.width() <= 0 || area.height() <= 0) return {};
  const double stretch = area.width() / (font.width(line) * area.height());
  double x = area.x();
  if (run.endsWord && run.direction == TextDirection::LeftToRight) line += U' ';
  if (run.endsWord && run.direction == TextDirection::RightToLeft) {
    line.insert(line.begin(), U' ');
    x -= font.width(U" ") * area.height() * stretch;
  }
  const double baseLine = area.y() + InvisibleFont::descent * area.height();
  return "/F " + number(area.height()) + " Tf " + number(stretch * 100) + " Tz 1 0 0 1 " +
         number(x) + ' ' + number(baseLine) + " Tm " + font.encode(line) + " Tj\n";
}

}  // namespace

QByteArray invisibleText(const std::vector<TextRun>& runs, const PictureSheet& sheet,
                         InvisibleFont& font) {
  QByteArray content;
  for (const TextRun& run : runs) {
    if (sheet.shows(run.rect.center().y())) content += shownRun(run, sheet, font);
  }
  return content.isEmpty() ? content : "BT 3 Tr\n" + content + "ET\n";
}

}  // namespace pdf
