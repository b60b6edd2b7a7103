#pragma once

#include "capture/PagePicture.h"
#include "platform/pdf/PicturePages.h"
#include "platform/printing/PrintableView.h"

/// The picture of a whole page as something that can be printed. The view is half the document's
/// size each way, so that a printed page shows the document at half scale with the picture's full
/// detail. Not flipped, as pictures are.
class CVPrintImageView : public printing::PrintableView {
 public:
  explicit CVPrintImageView(PagePicture picture);

  QRectF frame() const override;
  bool isFlipped() const override { return false; }
  void printTo(const printing::PrintInfo& info, const QString& path,
               std::function<void(MaybeError)> completion) override;

  /// The picture's rows on pages of that set-up, over the printable width, or up to a hundredth
  /// less where that spares a last page for a few rows. No page ends within a line of text or a
  /// small picture when a place a little higher avoids it, and none is left for white rows at the
  /// end. Reads the picture's end when nothing else says what is there. Any thread.
  std::vector<pdf::PicturePage> pagesFor(const printing::PrintInfo& info) const;

 private:
  std::vector<pdf::PicturePage> cut(const QSizeF& paper, const QRectF& printable,
                                    double share) const;
  int contentEnd(int row) const;

  PagePicture picture_;
};
