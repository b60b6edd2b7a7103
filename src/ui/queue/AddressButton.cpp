#include "ui/queue/AddressButton.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

namespace ui {

AddressButton::AddressButton(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::PointingHandCursor);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void AddressButton::setAddress(const QString& address) {
  if (text() == address) return;
  setText(address);
  setToolTip(address);
  update();
}

void AddressButton::setHighlightColor(const QColor& color) {
  highlight_ = color;
  update();
}

QSize AddressButton::sizeHint() const {
  return {80, fontMetrics().height() + 4};
}

QSize AddressButton::minimumSizeHint() const {
  return {20, fontMetrics().height() + 4};
}

void AddressButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  setHighlightColor(palette().color(QPalette::Highlight));
}

void AddressButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  setHighlightColor({});
}

void AddressButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    click();
  } else {
    QAbstractButton::keyPressEvent(event);
  }
}

void AddressButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QColor usual = palette().color(QPalette::Disabled, QPalette::Text);
  painter.setPen(isEnabled() && highlight_.isValid() ? highlight_ : usual);
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
  const int alignment =
      int(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter));
  painter.drawText(rect(), alignment, shown);
  if (!hasFocus()) return;
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  const int drawn = fontMetrics().horizontalAdvance(shown);
  const int left = layoutDirection() == Qt::RightToLeft ? width() - drawn : 0;
  painter.drawLine(left, height() - 1, left + drawn, height() - 1);
}

}  // namespace ui
