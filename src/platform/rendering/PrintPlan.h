#pragma once

#include <QSizeF>

#include "platform/pdf/PrintedPages.h"
#include "platform/rendering/Print.h"
#include "platform/rendering/PrintToFile.h"

namespace rendering {

/// What the engine is to print on, and what becomes of its pages: it knows only papers of whole
/// points and scales from 0.1 to 2.
struct PrintPlan {
  PrintPaper paper;
  pdf::PageFit fit;
};

/// The highest document that `planTall` can bring on papers that the engine takes. Points.
inline constexpr double highestTallPage = 1'300'000;

/// One page of the document's size, 1 CSS pixel to the point. Above 14,400 points it has a user
/// unit, so that all readers show it.
PrintPlan planTall(QSizeF document);

/// Pages of the set-up that show the document (CSS pixels) over their printable width, or up to a
/// hundredth less where that spares a last page for a few rows.
PrintPlan planPaginated(const PageSetup& setup, QSizeF document);

/// What the margins leave of the paper. Points.
QSizeF printableSize(const PageSetup& setup);

}  // namespace rendering
