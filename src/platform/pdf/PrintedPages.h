#pragma once

#include <QPointF>
#include <QSizeF>
#include <QString>
#include <memory>

#include "platform/base/Error.h"

namespace pdf {

class SourceFile;

/// How pages that a page engine has printed become the pages that were wanted.
struct PageFit {
  /// What every page becomes, in points.
  QSizeF paper;
  /// Points to a unit of the pages' user space (ISO 32000-1, 14.11.2); more than 1 keeps boxes of
  /// tall pages within what all readers show.
  double userUnit = 1;
  /// Of what was printed, with its links, destinations and tags.
  double enlargement = 1;
  /// Where the enlarged page's upper left corner lies on the paper, in units of user space, y
  /// downwards.
  QPointF place;
  /// The engine gives the places of named destinations without its print scale: in points of the
  /// unscaled page, from its upper left corner. This is the scale.
  double destinationScale = 1;
};

/// A document as a page engine has printed it, on pages of one size. Usable on any thread, by
/// several at once.
class PrintedPages {
 public:
  /// Reads the file, which has to stay as it is for this object's life (it may be renamed or
  /// removed).
  static Result<std::unique_ptr<PrintedPages>> open(const QString& path);
  explicit PrintedPages(std::unique_ptr<SourceFile> source);
  ~PrintedPages();

  /// Without blank pages at the end, which come of margins and padding below the last content. A
  /// document has at least one page.
  int pageCount() const { return pageCount_; }

  /// Writes that many pages, fitted. What need not change is copied unseen. `path` appears whole or
  /// not at all.
  MaybeError write(const PageFit& fit, const QString& path) const;

 private:
  std::unique_ptr<SourceFile> source_;
  int pageCount_;
};

}  // namespace pdf
