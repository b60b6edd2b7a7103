#pragma once

#include <QString>

class CVPlainButton;
class QLabel;

namespace ui {

struct Theme;

/// One command of a popover: an icon and a label laid over a plain button. A command that cannot be
/// used has no button, and its row says why.
struct CommandRow {
  CVPlainButton& button;
  QLabel& icon;
  QLabel& label;

  /// Glyph, accessible name and hover colour.
  void setUp(const QString& glyph, const Theme& theme) const;
  void setAvailable(bool available, const QString& whyNot) const;
};

}  // namespace ui
