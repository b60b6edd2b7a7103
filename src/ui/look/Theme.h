#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

namespace ui {

enum class Appearance { Light, Dark };

/// The colours of one of the two appearances, by role. Text keeps 4.5 : 1 on the grounds it stands
/// on, icons and focus rings 3 : 1.
struct Theme {
  Appearance appearance;
  QColor window;
  QColor surface;
  QColor text;
  /// Secondary text; also the text of controls that cannot be used.
  QColor secondaryText;
  QColor hairline;
  QColor accent;
  QColor onAccent;
  QColor done;
  QColor failed;
  /// Behind a popover's row while the pointer is over it.
  QColor rowHover;

  static const Theme& light();
  static const Theme& dark();
  /// The theme of the application setting: "dark" is dark, everything else light.
  static const Theme& of(const std::optional<QString>& setting);
  /// The theme that the windows show now. Main thread.
  static const Theme& current();

  QPalette palette() const;
};

/// Gives every window the theme, by style, palette and style sheet. Main thread.
void applyTheme(const Theme& theme);

/// The three text sizes, in proportion to the size that the desktop's own font has: 13, 12 and 11
/// pixels where that is 12, and never below 11.
enum class TextSize { Title, Body, Secondary };
QFont textFont(TextSize size);

}  // namespace ui
