#pragma once

#include <QRectF>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/base/Font.h"
#include "platform/pdf/PageCanvas.h"
#include "platform/printing/PrintableView.h"

class CVEntry;
class CVPreferences;

/// What is handed to the print system when a page is paginated: it prints the view that it wraps
/// and draws a header and a footer into the margins of every page. One page view serves one print
/// operation.
class CVPageView : public printing::PrintableView, public std::enable_shared_from_this<CVPageView> {
 public:
  explicit CVPageView(const QRectF& frame);

  std::shared_ptr<CVPreferences> preferences() const { return preferences_; }
  void setPreferences(std::shared_ptr<CVPreferences> preferences);

  std::shared_ptr<printing::PrintableView> printView() const { return printView_; }
  /// The page view takes the view's frame; without a view, an empty one.
  void setPrintView(std::shared_ptr<printing::PrintableView> view);

  std::shared_ptr<CVEntry> parent() const { return parent_.lock(); }
  void setParent(const std::shared_ptr<CVEntry>& parent);

  QRectF frame() const override { return frame_; }
  bool isFlipped() const override;
  void printTo(const printing::PrintInfo& info, const QString& path,
               std::function<void(MaybeError)> completion) override;

  /// Draws the header and footer of the next page; nothing, without counting the page, when they
  /// are switched off.
  void drawPageBorderWithSize(pdf::PageCanvas& canvas, const QSizeF& pageSize);

  /// Pages whose border was drawn so far.
  std::uint64_t pageNumber() const { return pageNumber_; }

  /// The font, or the same a whole number of points smaller, in which the text's line is no wider
  /// than `width` (its absolute value). Ends at size 0 at the latest.
  static Font fontForStringToFitInWidth(const QString& text, double width, const Font& seedFont,
                                        const pdf::TextMeasure& measure);

  /// Date and time now, in the short forms of the user's locale.
  static QString timeDateString();

 private:
  QRectF frame_;
  std::atomic<std::uint64_t> pageNumber_ = 0;
  std::shared_ptr<CVPreferences> preferences_;
  std::shared_ptr<printing::PrintableView> printView_;
  /// Weak: the entry holds its page view.
  std::weak_ptr<CVEntry> parent_;
};
