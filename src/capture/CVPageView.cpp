#include "capture/CVPageView.h"

#include <QDateTime>
#include <QLocale>
#include <QUrl>
#include <cmath>

#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntry.h"
#include "settings/CVPreferences.h"

using namespace Qt::StringLiterals;

namespace {

/// One page's border: its texts with their places. y is measured down from the page's upper edge
/// (the texts' own place there depends on the view's orientation).
class PageBorder {
 public:
  PageBorder(pdf::PageCanvas& canvas, QSizeF page, const CVPreferences& preferences,
             const Font& font, bool flipped)
      : canvas_(canvas),
        page_(page),
        margin_(static_cast<double>(preferences.margin())),
        halfMargin_(static_cast<double>(preferences.margin() / 2)),
        font_(font),
        flipped_(flipped) {}

  void drawHeader(const QString& title) {
    const QString date = CVPageView::timeDateString();
    const QSizeF dateSize = size(date);
    draw(date, page_.width() - margin_ - dateSize.width(), halfMargin_, dateSize);
    const double titleWidth = page_.width() - dateSize.width() - 2 * margin_;
    draw(title, margin_, halfMargin_, QSizeF(titleWidth, size(title).height()));
  }

  void drawFooter(const QString& notes, const QString& address, std::uint64_t number) {
    const QString label = u"Page %1"_s.arg(number);
    const QSizeF labelSize = size(label);
    drawNotes(notes, size(address).height());
    drawAddress(address, labelSize);
    draw(label, page_.width() - margin_ - labelSize.width(),
         fromBottom(labelSize.height(), labelSize.height()), labelSize);
  }

 private:
  QSizeF size(const QString& text) const { return canvas_.sizeOfText(text, font_); }

  /// Where a rectangle of `height` begins that starts `rise` above the lower edge: in a flipped
  /// view it hangs down from there, in an unflipped one it stands up from there.
  double fromBottom(double rise, double height) const {
    return flipped_ ? page_.height() - rise : page_.height() - rise - height;
  }

  void draw(const QString& text, double x, double y, const QSizeF& area) {
    canvas_.drawText(text, font_, QRectF(QPointF(x, y), area), pdf::LineBreaking::Word);
  }

  void drawNotes(const QString& notes, double addressHeight) {
    const double height = margin_ - addressHeight;
    const double top = flipped_ ? page_.height() - margin_ + addressHeight
                                : page_.height() - addressHeight - height;
    draw(notes, margin_, top, QSizeF(page_.width() - 2 * margin_, height));
  }

  void drawAddress(const QString& address, const QSizeF& labelSize) {
    const double width = page_.width() - labelSize.width() - 2 * margin_;
    const Font fitted = CVPageView::fontForStringToFitInWidth(address, width, font_, canvas_);
    const double height = canvas_.sizeOfText(address, fitted).height();
    const QRectF place(margin_, fromBottom(labelSize.height(), height), width, height);
    canvas_.drawText(address, fitted, place, pdf::LineBreaking::None);
  }

  pdf::PageCanvas& canvas_;
  const QSizeF page_;
  const double margin_;
  /// Halved as a whole number: an odd margin loses its half point.
  const double halfMargin_;
  const Font font_;
  const bool flipped_;
};

}  // namespace

CVPageView::CVPageView(const QRectF& frame) : frame_(frame) {}

void CVPageView::setPreferences(std::shared_ptr<CVPreferences> preferences) {
  preferences_ = std::move(preferences);
}

void CVPageView::setPrintView(std::shared_ptr<printing::PrintableView> view) {
  printView_ = std::move(view);
  frame_ = printView_ ? printView_->frame() : QRectF();
}

void CVPageView::setParent(const std::shared_ptr<CVEntry>& parent) {
  parent_ = parent;
}

bool CVPageView::isFlipped() const {
  return printView_ && printView_->isFlipped();
}

void CVPageView::printTo(const printing::PrintInfo& info, const QString& path,
                         std::function<void(MaybeError)> completion) {
  const auto drawBorders = [view = shared_from_this(), path] {
    return pdf::drawPageBorders(path, path, [&](pdf::PageCanvas& canvas, int, QSizeF pageSize) {
      view->drawPageBorderWithSize(canvas, pageSize);
    });
  };
  const bool bordered = preferences_ && preferences_->includeHeadersAndFooters();
  printView_->printTo(info, path, [=](const MaybeError& error) {
    if (error || !bordered) return completion(error);
    dispatch::globalAsync(dispatch::Priority::High, [=] {
      const MaybeError drawn = drawBorders();
      dispatch::mainAsync([=] { completion(drawn); });
    });
  });
}

void CVPageView::drawPageBorderWithSize(pdf::PageCanvas& canvas, const QSizeF& pageSize) {
  if (!preferences_ || !preferences_->includeHeadersAndFooters()) return;
  const Font font = preferences_->headerAndFooterFont().value_or(Font{QString(), 10});
  PageBorder border(canvas, pageSize, *preferences_, font, isFlipped());
  const auto entry = parent();
  const QUrl address = entry ? entry->currentURL().value_or(QUrl()) : QUrl();
  border.drawHeader(entry ? entry->title().value_or(QString()) : QString());
  border.drawFooter(preferences_->notes().value_or(QString()), address.toString(QUrl::FullyEncoded),
                    pageNumber_ + 1);
  ++pageNumber_;
}

Font CVPageView::fontForStringToFitInWidth(const QString& text, double width, const Font& seedFont,
                                           const pdf::TextMeasure& measure) {
  const double allowed = std::abs(width);
  Font font = seedFont;
  while (font.pointSize > 0 && measure.sizeOfText(text, font).width() > allowed) {
    font.pointSize -= 1.0;
  }
  return font;
}

QString CVPageView::timeDateString() {
  return QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
}
