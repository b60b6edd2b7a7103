#include "platform/rendering/PrintPlan.h"

#include <algorithm>
#include <cmath>

#include "platform/pdf/PicturePages.h"
#include "platform/rendering/TextLayer.h"

namespace rendering {
namespace {

/// The engine lays out CSS pixels of 1/96 inch; ours are points.
constexpr double onePixelPerPoint = 96.0 / 72.0;
constexpr double smallestScale = 0.1;
constexpr double largestScale = 2;

/// The engine draws shadows and filters with 300 dots to the inch of its paper. A page printed
/// smaller by this factor still has a dot for each of its CSS pixels.
constexpr double finestReduction = 4;

/// Higher paper fails.
constexpr double highestPaper = 100000;

/// A side of paper in whole points, as the engine has them, no longer than `points`. It rounds them
/// to 1/300 inch; lengths that it would shorten, which leaves an unpainted edge, are passed over.
double paperSide(double points) {
  const double whole = std::max(1.0, std::floor(points));
  for (double side = whole; side > 12 && side > whole - 4; --side) {
    const double dots = side * 300 / 72;
    if (std::round(dots) >= dots) return side;
  }
  return whole;
}

/// Of paper that shows a layout of that width.
double leastWidth(double layoutWidth) {
  return std::ceil(layoutWidth * smallestScale / onePixelPerPoint);
}

/// Where a last page would hold a few rows only, all pages are made so much higher that they find
/// room, and shown so much smaller.
void spareLastPage(PrintPlan& plan, QSizeF document, double printableHeight) {
  const double pointsPerPixel = plan.paper.size.width() / document.width();
  const double rows = std::floor(plan.paper.size.height() / pointsPerPixel);
  const double pages = std::floor(document.height() / rows);
  const double rest = document.height() - pages * rows;
  if (pages < 1 || rest <= 0 || rest > sliver * rows) return;
  // A point more, since the engine has only whole rows.
  const double height = std::ceil(document.height() / pages * pointsPerPixel) + 1;
  plan.paper.size.setHeight(height);
  plan.fit.enlargement = std::min(plan.fit.enlargement, printableHeight / height);
}

}  // namespace

PrintPlan planTall(QSizeF document) {
  PrintPlan plan;
  plan.fit.paper = document;
  const double longest = std::max(document.width(), document.height());
  const double unit = longest / pdf::longestPageSide;
  double reduction = 1;
  plan.paper.size = document;
  if (unit > 1) {
    const double wanted = std::max(std::min(unit, finestReduction), longest / highestPaper);
    // From the width, so that the layout keeps exactly its own.
    const double width =
        std::max(paperSide(document.width() / wanted), leastWidth(document.width()));
    reduction = document.width() / width;
    // What is more than the document is cut off with the page.
    plan.paper.size = {width, std::ceil(document.height() / reduction) + 1};
    plan.fit.userUnit = std::max(unit, reduction);
    plan.fit.enlargement = reduction / plan.fit.userUnit;
  }
  plan.paper.scale = onePixelPerPoint / reduction;
  plan.fit.destinationScale = plan.paper.scale;
  return plan;
}

/// Margins are left to the fitting: the engine would round them to CSS pixels.
PrintPlan planPaginated(const PageSetup& setup, QSizeF document) {
  const QSizeF printable = printableSize(setup);
  const double most = document.width() * largestScale / onePixelPerPoint;
  const double width =
      std::max(paperSide(std::min(printable.width(), most)), leastWidth(document.width()));
  PrintPlan plan;
  plan.fit.paper = setup.paper;
  plan.fit.enlargement = printable.width() / width;
  plan.fit.place = QPointF(setup.margins.left(), setup.margins.top());
  plan.paper.size = {width, std::max(1.0, std::floor(printable.height() / plan.fit.enlargement))};
  spareLastPage(plan, document, printable.height());
  plan.paper.scale = width * onePixelPerPoint / document.width();
  plan.fit.destinationScale = plan.paper.scale;
  return plan;
}

QSizeF printableSize(const PageSetup& setup) {
  return setup.paper - QSizeF(setup.margins.left() + setup.margins.right(),
                              setup.margins.top() + setup.margins.bottom());
}

}  // namespace rendering
