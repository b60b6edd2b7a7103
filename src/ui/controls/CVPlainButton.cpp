#include "ui/controls/CVPlainButton.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

namespace {

const QColor usualHoverColor(98, 163, 245);
constexpr double focusFrameWidth = 2;
constexpr double focusFrameRadius = 6;

}  // namespace

CVPlainButton::CVPlainButton(QWidget* parent) : QPushButton(parent) {
  setFlat(true);
}

void CVPlainButton::setBackgroundColor(std::optional<QColor> color) {
  backgroundColor_ = color;
  update();
}

void CVPlainButton::setHoverColor(std::optional<QColor> color) {
  hoverColor_ = color;
  update();
}

void CVPlainButton::enterEvent(QEnterEvent* event) {
  QPushButton::enterEvent(event);
  setHovering(true);
}

void CVPlainButton::leaveEvent(QEvent* event) {
  QPushButton::leaveEvent(event);
  setHovering(false);
}

void CVPlainButton::focusInEvent(QFocusEvent* event) {
  const Qt::FocusReason reason = event->reason();
  focusFromKeyboard_ = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                       reason == Qt::ShortcutFocusReason;
  QPushButton::focusInEvent(event);
}

void CVPlainButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    click();
  } else {
    QPushButton::keyPressEvent(event);
  }
}

void CVPlainButton::setHovering(bool hovering) {
  hovering_ = hovering;
  if (hoverBlock_) hoverBlock_(hovering);
  update();
}

void CVPlainButton::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  const QColor color = hovering_ ? hoverColor_.value_or(usualHoverColor)
                                 : backgroundColor_.value_or(Qt::transparent);
  painter.fillRect(event->rect(), color);
  if (!hasFocus() || !focusFromKeyboard_) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::Highlight), focusFrameWidth));
  const double inset = focusFrameWidth;
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), focusFrameRadius,
                          focusFrameRadius);
}
