#pragma once

#include <QRectF>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/base/Error.h"

namespace web {
class Page;
}

namespace rendering {

enum class TextDirection { LeftToRight, RightToLeft };

/// One word, or the part of it on one line, in logical order, with the exact box it is drawn in.
struct TextRun {
  QString text;
  QRectF rect;
  double fontSize = 0;
  TextDirection direction = TextDirection::LeftToRight;
  /// A space or line end follows in the text.
  bool endsWord = true;
};

/// A link, by the boxes that it is drawn in. Exactly one of `href` (absolute) and `targetY` (a
/// place in this document) is set.
struct LinkArea {
  std::optional<QString> href;
  std::optional<double> targetY;
  std::vector<QRectF> rects;
};

struct Heading {
  QString text;
  /// 1 to 6.
  int level = 1;
  double y = 0;
};

/// Rows [top, bottom) that a page break should not go through: a line of text or a small picture.
struct RowInterval {
  double top = 0;
  double bottom = 0;
};

/// Everything in CSS pixels from the document's top left corner, matching a picture of the whole
/// document.
struct TextLayer {
  std::vector<TextRun> runs;
  std::vector<LinkArea> links;
  std::vector<Heading> headings;
  /// Sorted by top; lines of columns side by side overlap.
  std::vector<RowInterval> unbreakableRows;
  /// The document's language (BCP 47) where it names one.
  std::optional<QString> language;
  /// Text beyond the bound (500,000 runs) was left out.
  bool truncated = false;
};

/// Reads the visible text with its places from the engine's layout, frames of the page's own origin
/// included.
void textLayer(const std::shared_ptr<web::Page>& page,
               std::function<void(Result<TextLayer>)> callback);

/// Only the rows that should stay whole, as `TextLayer::unbreakableRows`.
void breakCandidates(const std::shared_ptr<web::Page>& page,
                     std::function<void(Result<std::vector<RowInterval>>)> callback);

/// The share of a page that is too little for a last page of its own.
inline constexpr double sliver = 0.01;

/// Where to end a page that begins at `top` and has room down to `bottom`: the place in its lower
/// half that cuts the fewest intervals, and the lowest of those. `rows` as above. Any thread.
double pageBreakBefore(const std::vector<RowInterval>& rows, double top, double bottom);

}  // namespace rendering
