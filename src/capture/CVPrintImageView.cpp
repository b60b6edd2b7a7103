#include "capture/CVPrintImageView.h"

#include <algorithm>
#include <cmath>

#include "capture/CaptureError.h"
#include "capture/PictureText.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/pdf/PictureEnd.h"

using namespace Qt::StringLiterals;

namespace {

/// But for the first one.
void dropPagesFrom(int row, std::vector<pdf::PicturePage>& pages) {
  while (pages.size() > 1 && pages.back().firstRow >= row)
    pages.pop_back();
}

}  // namespace

CVPrintImageView::CVPrintImageView(PagePicture picture) : picture_(std::move(picture)) {}

QRectF CVPrintImageView::frame() const {
  return {QPointF(0, 0), picture_.size / 2};
}

std::vector<pdf::PicturePage> CVPrintImageView::pagesFor(const printing::PrintInfo& info) const {
  const QRectF printable =
      QRectF(QPointF(0, 0), info.paperSize())
          .adjusted(info.leftMargin(), info.topMargin(), -info.rightMargin(), -info.bottomMargin());
  if (printable.width() <= 0 || printable.height() <= 0) return {};
  std::vector<pdf::PicturePage> pages = cut(info.paperSize(), printable, 1);
  if (pages.empty()) return pages;
  const int end = contentEnd(pages.back().firstRow);
  dropPagesFrom(end, pages);
  using rendering::sliver;
  const bool endsInSliver =
      pages.size() > 1 && pages.back().target.height() < sliver * printable.height();
  for (double share = 1 - sliver / 4; endsInSliver && share > 1 - 1.1 * sliver;
       share -= sliver / 4) {
    std::vector<pdf::PicturePage> fewer = cut(info.paperSize(), printable, share);
    dropPagesFrom(end, fewer);
    if (fewer.size() < pages.size()) return fewer;
  }
  return pages;
}

/// Over that share of the printable width.
std::vector<pdf::PicturePage> CVPrintImageView::cut(const QSizeF& paper, const QRectF& printable,
                                                    double share) const {
  const double width = share * printable.width();
  const double pointsPerUnit = width / picture_.size.width();
  const double rowsPerUnit = picture_.strips.pixels.height() / picture_.size.height();
  const double room = printable.height() / pointsPerUnit;

  std::vector<pdf::PicturePage> pages;
  int row = 0;
  while (row < picture_.strips.pixels.height()) {
    const double top = row / rowsPerUnit;
    double bottom = top + room;
    if (bottom < picture_.size.height()) {
      bottom = rendering::pageBreakBefore(picture_.text.unbreakableRows, top, bottom);
    }
    const int end = std::min(static_cast<int>(std::floor(bottom * rowsPerUnit + 0.01)),
                             picture_.strips.pixels.height());
    const int rows = std::max(1, end - row);
    const double height = rows / rowsPerUnit * pointsPerUnit;
    pages.push_back({paper, row, rows, QRectF(printable.topLeft(), QSizeF(width, height))});
    row += rows;
  }
  return pages;
}

/// The row below the last text and the last row that is not white; the picture is only read where
/// no text comes after `row`.
int CVPrintImageView::contentEnd(int row) const {
  const int rows = picture_.strips.pixels.height();
  const double rowsPerUnit = rows / picture_.size.height();
  double textEnd = 0;
  for (const auto& text : picture_.text.unbreakableRows)
    textEnd = std::max(textEnd, text.bottom * rowsPerUnit);
  if (textEnd > row) return rows;
  return std::max(static_cast<int>(std::ceil(textEnd)),
                  rows - pdf::whiteRowsAtEnd(picture_.strips));
}

void CVPrintImageView::printTo(const printing::PrintInfo& info, const QString& path,
                               std::function<void(MaybeError)> completion) {
  dispatch::globalAsync(dispatch::Priority::High, [view = *this, info, path,
                                                   completion = std::move(completion)] {
    const auto& picture = view.picture_;
    const auto pages = view.pagesFor(info);
    MaybeError error;
    if (pages.empty()) {
      error = capture::makeError(capture::CannotWrite,
                                 u"The margins leave no room on the paper; choose smaller ones."_s);
    } else {
      const auto written = pdf::writePicturePages(picture.strips, picture.size, pages,
                                                  capture::pictureText(picture.text), path);
      if (!written) error = written.error();
    }
    dispatch::mainAsync([completion, error] { completion(error); });
  });
}
