#include "ui/queue/TitleField.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

#include "ui/controls/CVPaddedTextFieldCell.h"

namespace ui {

TitleField::TitleField(QWidget* parent) : QLineEdit(parent) {
  CVPaddedTextFieldCell::applyTo(*this);
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { setToolTip(text); });
}

void TitleField::focusInEvent(QFocusEvent* event) {
  textBeforeEditing_ = text();
  QLineEdit::focusInEvent(event);
}

/// Escape gives the title back as it was; the row then keeps the keyboard.
void TitleField::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && hasFocus()) {
    setText(textBeforeEditing_);
    setModified(false);
    if (parentWidget()) parentWidget()->setFocus();
    return;
  }
  QLineEdit::keyPressEvent(event);
  // The row would take it for its own: to begin its conversion.
  const bool ends = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (ends) event->accept();
}

void TitleField::paintEvent(QPaintEvent* event) {
  const bool fits = fontMetrics().horizontalAdvance(text()) <= width();
  if (hasFocus() || fits) {
    QLineEdit::paintEvent(event);
  } else {
    paintElided();
  }
}

void TitleField::paintElided() {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::Text));
  const QString elided = fontMetrics().elidedText(text(), Qt::ElideRight, width());
  painter.drawText(
      rect(), int(Qt::AlignVCenter | QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)),
      elided);
}

}  // namespace ui
