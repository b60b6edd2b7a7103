#include "ui/controls/CVPaddedTextFieldCell.h"

#include <QLineEdit>

namespace {

/// QLineEdit keeps these pixels free inside the rectangle that its style gives it, which is the
/// whole of the bounds where there is no frame.
constexpr int innerMargin = 2;
constexpr int innerLineMargin = 1;

}  // namespace

void CVPaddedTextFieldCell::applyTo(QLineEdit& field) {
  field.setFrame(false);
  field.setTextMargins(-innerMargin, -innerLineMargin, -innerMargin, -innerLineMargin);
  QPalette palette = field.palette();
  palette.setColor(QPalette::Base, Qt::transparent);
  field.setPalette(palette);
}
