#include "ui/look/StyleSheet.h"

#include "ui/look/Theme.h"

using namespace Qt::StringLiterals;

namespace ui {
namespace {

/// Roles stand as @role; the longer names come first where one begins with another.
const QString sheet =
    uR"(
QToolTip { color: @text; background: @surface; border: 1px solid @hairline; padding: 3px 6px; }
QMenuBar { background: @window; color: @text; border: none; }
QMenuBar::item { padding: 4px 8px; border-radius: 4px; background: transparent; }
QMenuBar::item:selected { background: @hairline; }
QMenu { background: @surface; color: @text; border: 1px solid @hairline; padding: 4px; }
QMenu::item { padding: 5px 20px 5px 16px; border-radius: 4px; }
QMenu::item:selected { background: @accent; color: @ground; }
QMenu::item:disabled { color: @secondary; background: transparent; }
QMenu::separator { height: 1px; background: @hairline; margin: 4px 8px; }
QToolButton { border: 2px solid transparent; border-radius: 6px; padding: 2px; background: transparent; }
QToolButton:hover { background: @hairline; }
QToolButton:pressed, QToolButton:checked { background: @hairline; }
QToolButton:focus { border-color: @accent; }
#busyVeil { background: @shade; border-radius: 6px; }
#busyIndicator { background: @veil; border-radius: 22px; }
QCheckBox { spacing: 8px; }
QCheckBox:disabled { color: @secondary; }
QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid @secondary; border-radius: 4px; background: @surface; }
QCheckBox::indicator:checked { border-color: @accent; background: @accent; image: url(:/corvalis/icons/pictures/@check.svg); }
QCheckBox::indicator:focus { border: 2px solid @accent; width: 12px; height: 12px; }
QCheckBox::indicator:disabled { border-color: @hairline; background: @window; }
QCheckBox::indicator:checked:disabled { border-color: @hairline; background: @hairline; }
QLineEdit[frame="true"], QPlainTextEdit { border: 1px solid @secondary; border-radius: 5px; padding: 3px 6px; background: @surface; selection-background-color: @accent; selection-color: @ground; }
QLineEdit[frame="true"]:focus, QPlainTextEdit:focus { border: 2px solid @accent; padding: 2px 5px; }
QLineEdit[frame="true"]:disabled, QPlainTextEdit:disabled { border-color: @hairline; color: @secondary; background: @window; }
QComboBox { border: 1px solid @secondary; border-radius: 5px; padding: 3px 8px; min-height: 18px; background: @surface; color: @text; }
QComboBox:hover, .QPushButton:hover { background: @hairline; }
QComboBox:focus { border: 2px solid @accent; padding: 2px 7px; }
QComboBox:disabled { border-color: @hairline; color: @secondary; background: @window; }
QComboBox::drop-down { border: none; width: 24px; }
QComboBox::down-arrow { width: 12px; height: 12px; image: url(:/corvalis/icons/pictures/@choose.svg); }
QComboBox QAbstractItemView { border: 1px solid @secondary; background: @surface; color: @text; selection-background-color: @accent; selection-color: @ground; outline: none; }
.QPushButton { border: 1px solid @secondary; border-radius: 6px; padding: 4px 14px; min-height: 18px; background: @surface; color: @text; }
.QPushButton:focus { border: 2px solid @accent; padding: 3px 13px; }
.QPushButton:pressed { background: @secondary; }
.QPushButton:default { border-color: @accent; background: @accent; color: @ground; }
.QPushButton:disabled { border-color: @hairline; color: @secondary; background: @window; }
QScrollBar:vertical { width: 10px; background: transparent; margin: 0; border: none; }
QScrollBar::handle:vertical { background: @secondary; border-radius: 3px; min-height: 28px; margin: 2px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
)"_s;

}  // namespace

QString styleSheet(const Theme& theme) {
  QString text = sheet;
  const bool dark = theme.appearance == Appearance::Dark;
  const std::pair<QLatin1StringView, QColor> roles[] = {
      // The indicator is drawn in white and half-clear grey: it needs a darker ground than light
      // windows have.
      {"@veil"_L1, dark ? theme.surface : theme.secondaryText},
      {"@text"_L1, theme.text},
      {"@surface"_L1, theme.surface},
      {"@window"_L1, theme.window},
      {"@hairline"_L1, theme.hairline},
      {"@accent"_L1, theme.accent},
      {"@ground"_L1, theme.onAccent},
      {"@secondary"_L1, theme.secondaryText},
  };
  text.replace("@check"_L1, dark ? "check-black"_L1 : "check-white"_L1);
  // A thumbnail is mostly white: it is dimmed as far as the window around it asks for.
  text.replace("@shade"_L1, dark ? "rgba(27, 29, 33, 205)"_L1 : "rgba(27, 29, 33, 115)"_L1);
  text.replace("@choose"_L1, dark ? "choose-dark"_L1 : "choose-light"_L1);
  for (const auto& [name, colour] : roles)
    text.replace(name, colour.name());
  return text;
}

}  // namespace ui
