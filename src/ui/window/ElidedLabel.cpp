#include "ui/window/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

namespace ui {
namespace {

/// No line on a screen is longer; measuring a text of megabytes would hold the window up.
constexpr qsizetype longestShown = 2000;

QString shortened(const QString& text) {
  if (text.size() <= longestShown) return text;
  return text.left(longestShown / 2) + u'\u2026' + text.right(longestShown / 2);
}

}  // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ElidedLabel::setFullText(const QString& text, Qt::TextElideMode mode) {
  fullText_ = shortened(text);
  mode_ = mode;
  setToolTip(fullText_);
  setAccessibleName(fullText_);
  update();
}

QSize ElidedLabel::minimumSizeHint() const {
  return {20, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  const QString shown = fontMetrics().elidedText(fullText_, mode_, width());
  painter.drawText(rect(), int(QStyle::visualAlignment(layoutDirection(), alignment())), shown);
}

}  // namespace ui
