#include "ui/window/DropZoneView.h"

#include <QPainter>

#include "ui/look/Theme.h"

namespace ui {
namespace {

constexpr double radius = 8;
constexpr double inset = 12.5;
constexpr float tint = 0.10F;
constexpr double lineWidth = 1.5;

}  // namespace

DropZoneView::DropZoneView(QWidget* parent) : QWidget(parent) {}

void DropZoneView::setDragHovering(bool hovering) {
  hovering_ = hovering;
  update();
}

void DropZoneView::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::current();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QColor ground = hovering_ ? theme.accent : theme.surface;
  if (hovering_) ground.setAlphaF(tint);
  QPen frame(hovering_ ? theme.accent : theme.secondaryText, hovering_ ? 2 : lineWidth);
  if (!hovering_) {
    QColor quiet = theme.secondaryText;
    quiet.setAlphaF(0.55F);
    frame.setColor(quiet);
    frame.setDashPattern({4, 4});
    frame.setCapStyle(Qt::RoundCap);
  }
  painter.setPen(frame);
  painter.setBrush(ground);
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

}  // namespace ui
