#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>
#include <vector>

#include "platform/base/Error.h"

namespace imaging {
struct PictureStrips;
}

namespace pdf {

enum class TextDirection { LeftToRight, RightToLeft };

/// One word of the page's text, or the part of it on one line, in logical order, with the box it is
/// drawn in: points of the document (CSS pixels), y downwards. The box decides place, height and
/// width; longer pieces of text work too, their characters then share the width by their usual
/// proportions.
struct TextRun {
  QString text;
  QRectF rect;
  double fontSize = 0;  ///< points; used where the box has no height
  TextDirection direction = TextDirection::LeftToRight;
  bool endsWord = true;  ///< a space or line end follows in the text
};

/// A link, by the boxes that it is drawn in: to an address, or to a height in the document. Exactly
/// one of `href` and `targetY` is set.
struct LinkArea {
  std::optional<QString> href;
  std::optional<double> targetY;
  std::vector<QRectF> rects;
};

/// A heading for the outline. Levels count from 1; a level that skips one hangs under the nearest
/// above it.
struct Heading {
  QString text;
  int level = 1;
  double y = 0;  ///< points of the document
};

/// What a picture of a page says, laid invisibly over it.
struct PictureText {
  std::vector<TextRun> runs;
  std::vector<LinkArea> links;
  std::vector<Heading> headings;
  std::optional<QString> language;  ///< a BCP 47 tag
};

/// One page of the document: the picture's rows from `firstRow` on, in the rectangle `target` of
/// the paper (points, y downwards from the paper's upper edge), over the rectangle's whole width.
struct PicturePage {
  QSizeF paper;  ///< points
  int firstRow = 0;
  int rows = 0;
  QRectF target;
};

/// The longest side that all readers show, in points (ISO 32000-1, Annex C).
inline constexpr double longestPageSide = 14400;

struct WrittenPicturePages {
  int pageCount = 0;
  /// Says, in words for the user, that a page is longer than all readers show at full size. Such a
  /// page is written with a user unit (ISO 32000-1, 14.11.2): its box keeps within the limit, so
  /// every reader shows it, readers that know the unit at its full size, the others reduced in
  /// proportion.
  std::optional<QString> note;
};

/// One page with the whole picture, half the size of the document in each direction: a picture of
/// `documentSize` points becomes a page of half that.
PicturePage wholePicturePage(QSizeF documentSize, int rows);

/// Writes a picture as a PDF. The picture's compressed rows go into the file as they are, nothing
/// is packed again, and memory does not grow with the picture's height. A page may begin and end
/// anywhere in the picture. `documentSize` is the size of the document that the picture shows, in
/// points; the coordinates of `text` are in its measure. A run or link outside of all pages is left
/// out. Text is invisible, can be searched, selected and copied in any script. `path` appears whole
/// or not at all. Any thread.
Result<WrittenPicturePages> writePicturePages(const imaging::PictureStrips& picture,
                                              QSizeF documentSize,
                                              const std::vector<PicturePage>& pages,
                                              const PictureText& text, const QString& path);

}  // namespace pdf
