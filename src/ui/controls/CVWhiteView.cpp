#include "ui/controls/CVWhiteView.h"

#include <QPaintEvent>
#include <QPainter>

CVWhiteView::CVWhiteView(QWidget* parent) : QWidget(parent) {}

void CVWhiteView::setAlphaValue(double alpha) {
  alpha_ = qBound(0.0, alpha, 1.0);
  update();
}

void CVWhiteView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  QColor white(Qt::white);
  white.setAlphaF(float(alpha_));
  painter.fillRect(event->rect(), white);
}
