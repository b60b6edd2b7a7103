#include "capture/CVPrintImageView.h"

#include <cmath>

#include "capture/CaptureError.h"
#include "capture/PictureText.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

CVPrintImageView::CVPrintImageView(PagePicture picture) : picture_(std::move(picture)) {}

QRectF CVPrintImageView::frame() const {
  return {QPointF(0, 0), picture_.size / 2};
}

std::vector<pdf::PicturePage> CVPrintImageView::pagesFor(const printing::PrintInfo& info) const {
  const QRectF printable =
      QRectF(QPointF(0, 0), info.paperSize())
          .adjusted(info.leftMargin(), info.topMargin(), -info.rightMargin(), -info.bottomMargin());
  if (printable.width() <= 0 || printable.height() <= 0) return {};
  const double pointsPerUnit = printable.width() / picture_.size.width();
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
    pages.push_back({info.paperSize(), row, rows,
                     QRectF(printable.topLeft(), QSizeF(printable.width(), height))});
    row += rows;
  }
  return pages;
}

void CVPrintImageView::printTo(const printing::PrintInfo& info, const QString& path,
                               std::function<void(MaybeError)> completion) {
  dispatch::globalAsync(dispatch::Priority::High, [picture = picture_, pages = pagesFor(info), path,
                                                   completion = std::move(completion)] {
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
