#include "ui/controls/CVHoverButton.h"

#include <QKeyEvent>

CVHoverButton::CVHoverButton(QWidget* parent) : QToolButton(parent) {
  setFocusPolicy(Qt::StrongFocus);
}

void CVHoverButton::enterEvent(QEnterEvent* event) {
  QToolButton::enterEvent(event);
  setIcon(hoverImage_);
}

void CVHoverButton::leaveEvent(QEvent* event) {
  QToolButton::leaveEvent(event);
  setIcon(defaultImage_);
}

void CVHoverButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    click();
  } else {
    QToolButton::keyPressEvent(event);
  }
}
