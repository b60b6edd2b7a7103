#include "ui/popovers/CommandRow.h"

#include <QLabel>

#include "ui/controls/CVPlainButton.h"
#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"

namespace ui {
namespace {

constexpr QSize iconSize(20, 20);
constexpr int rightMargin = 16;

}  // namespace

void CommandRow::setUp(const QString& glyph, const Theme& theme) const {
  icon.setPixmap(glyphIcon(glyph, theme.secondaryText).pixmap(iconSize, icon.devicePixelRatioF()));
  label.setFont(textFont(TextSize::Body));
  label.setContentsMargins(0, 0, rightMargin, 0);
  label.setBuddy(&button);
  button.setAccessibleName(label.text());
  button.setHoverColor(theme.rowHover);
}

void CommandRow::setAvailable(bool available, const QString& whyNot) const {
  const Theme& theme = Theme::current();
  button.setVisible(available);
  icon.setEnabled(available);
  QPalette palette = label.palette();
  palette.setColor(QPalette::WindowText, available ? theme.text : theme.secondaryText);
  label.setPalette(palette);
  if (auto* row = button.parentWidget()) row->setToolTip(available ? QString() : whyNot);
}

}  // namespace ui
