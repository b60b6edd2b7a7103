#include "platform/fonts/FontName.h"

#include <QFontDatabase>
#include <QStringList>
#include <optional>

namespace fonts {
namespace {

struct Face {
  QString family;
  QString style;
};

/// The family with the longest name that leaves the name of a style.
std::optional<Face> faceNamed(const QString& name) {
  for (qsizetype end = name.lastIndexOf(u' '); end > 0; end = name.lastIndexOf(u' ', end - 1)) {
    const Face face{name.left(end), name.mid(end + 1)};
    const bool known = QFontDatabase::hasFamily(face.family) &&
                       QFontDatabase::styles(face.family).contains(face.style);
    if (known) return face;
  }
  return std::nullopt;
}

/// Desktops name their system font by an alias ("Sans") that the font database does not list.
bool isFamily(const QString& name) {
  return QFontDatabase::hasFamily(name) ||
         QFontDatabase::systemFont(QFontDatabase::GeneralFont).family() == name;
}

bool isRegular(const QFont& font) {
  const bool normalWidth = font.stretch() == QFont::AnyStretch || font.stretch() == 100;
  return font.weight() == QFont::Normal && font.style() == QFont::StyleNormal && normalWidth;
}

}  // namespace

bool isKnown(const QString& name) {
  return isFamily(name) || faceNamed(name);
}

QFont fontNamed(const Font& font) {
  QFont named = font.name.isEmpty() ? QFont() : QFont(font.name);
  if (const auto face = faceNamed(font.name))
    named = QFontDatabase::font(face->family, face->style, 1);
  if (font.pointSize > 0) named.setPointSizeF(font.pointSize);
  return named;
}

QString nameOf(const QFont& font) {
  const QString style =
      font.styleName().isEmpty() ? QFontDatabase::styleString(font) : font.styleName();
  const QString whole = font.family() + u' ' + style;
  return !isRegular(font) && faceNamed(whole) ? whole : font.family();
}

}  // namespace fonts
