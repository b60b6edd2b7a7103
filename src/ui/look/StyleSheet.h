#pragma once

#include <QString>

namespace ui {

struct Theme;

/// What palette and style cannot say: flat buttons, their focus rings, quiet scroll bars, fields.
QString styleSheet(const Theme& theme);

}  // namespace ui
