#pragma once

#include <QString>

/// A font by name and size. The name is a family as the font system lists it, with a style behind
/// it where that is not the regular one; the system font has the name that the desktop gives it.
struct Font {
  QString name;
  double pointSize = 0;

  friend bool operator==(const Font&, const Font&) = default;
};
