#include "ui/queue/DropLine.h"

#include <QPainter>

#include "ui/look/Theme.h"

namespace ui {

/// Painted, because the program's style sheet has its way with the colours of a plain widget.
void DropLine::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), Theme::current().accent);
}

}  // namespace ui
