#include "ui/controls/CVPaddedTextFieldCell.h"

#include <QApplication>
#include <QLineEdit>
#include <QStyleFactory>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace {

/// QLineEdit keeps these pixels free inside the rectangle that the style gives it.
constexpr int innerMargin = 2;
constexpr int innerLineMargin = 1;

CVPaddedTextFieldCell& sharedCell() {
  static auto* cell = [] {
    auto* made = new CVPaddedTextFieldCell;
    made->setParent(qApp);
    return made;
  }();
  return *cell;
}

}  // namespace

void CVPaddedTextFieldCell::applyTo(QLineEdit& field) {
  field.setFrame(false);
  field.setStyle(&sharedCell());
  field.setTextMargins(-innerMargin, -innerLineMargin, -innerMargin, -innerLineMargin);
  QPalette palette = field.palette();
  palette.setColor(QPalette::Base, Qt::transparent);
  field.setPalette(palette);
}

QRect CVPaddedTextFieldCell::subElementRect(SubElement element, const QStyleOption* option,
                                            const QWidget* widget) const {
  if (element == SE_LineEditContents) return drawingRectForBounds(option->rect);
  return QProxyStyle::subElementRect(element, option, widget);
}
