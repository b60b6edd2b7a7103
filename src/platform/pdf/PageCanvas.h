#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/base/Font.h"

namespace pdf {

/// Measures text as a `PageCanvas` draws it. Points.
class TextMeasure {
 public:
  virtual ~TextMeasure() = default;

  /// The size of the text on one line; line breaks count as spaces. Zero for an empty text and for
  /// a font whose size is not positive, so a search for a fitting size ends.
  virtual QSizeF sizeOfText(const QString& text, const Font& font) const = 0;
};

enum class LineBreaking {
  None,  ///< one line, cut off at the rectangle's right edge
  Word,  ///< lines broken between words; a line that would pass the rectangle's lower edge is left
         ///< out
};

/// The face of one page, drawn on before the page is written. Points, origin at the upper left
/// corner as a reader shows the page, y downwards.
class PageCanvas : public TextMeasure {
 public:
  /// Draws black text from the rectangle's top. Nothing is drawn outside of the rectangle; one
  /// without a positive width and height draws nothing, one lower than a line shows the upper part
  /// of the first line.
  virtual void drawText(const QString& text, const Font& font, const QRectF& rectangle,
                        LineBreaking breaking) = 0;
};

/// A measure without a page, for use on one thread.
std::unique_ptr<TextMeasure> createTextMeasure();

/// `pageIndex` counts from 0; the size is the one a reader shows, in points.
using DrawPageBorder = std::function<void(PageCanvas& canvas, int pageIndex, QSizeF pageSize)>;

/// Copies a document and lays on every page what `draw` draws for it: selectable text in embedded
/// fonts, over the page's own content, marked as not belonging to the tagged content. Outline,
/// tags, links and everything else of the document stay. `draw` is called once per page, in order,
/// on the calling thread, which may be any thread. `output` appears whole or not at all and may be
/// `input`.
MaybeError drawPageBorders(const QString& input, const QString& output, const DrawPageBorder& draw);

}  // namespace pdf
