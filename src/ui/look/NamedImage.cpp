#include "ui/look/NamedImage.h"

#include <QHash>
#include <QtMath>
#include <numbers>

#include "ui/look/Theme.h"
#include "ui/look/VectorPicture.h"

using namespace Qt::StringLiterals;

/// The resources lie in a static library, where nothing else makes the linker keep them. Outside of
/// every namespace, as the macro needs it.
static void keepResources() {
  Q_INIT_RESOURCE(icons);
}

namespace ui {
namespace {

constexpr QSizeF iconSize(20, 20);
constexpr QSizeF smallSize(16, 16);
constexpr QSizeF arrowSize(40, 40);
constexpr QSizeF thumbnailSize(128, 92);
constexpr int arrowFrames = 15;

/// Browser marks have one picture for both themes: a grey that keeps 3 : 1 on either ground.
const QColor markColour(0x7A, 0x81, 0x90);

QString glyphSource(const QString& glyph) {
  return u"glyphs/%1.svg"_s.arg(glyph);
}

QColor iconColour(const Theme& theme, const QString& glyph, bool active) {
  if (!active) return theme.secondaryText;
  return glyph == "delete"_L1 ? theme.failed : theme.accent;
}

/// "icon-<glyph>-<inactive|active>-<dark|light>".
std::optional<VectorPicture> iconPicture(const QStringList& parts) {
  static const QStringList glyphs{u"add"_s, u"settings"_s, u"view"_s,   u"delete"_s, u"save"_s,
                                  u"up"_s,  u"down"_s,     u"adjust"_s, u"warning"_s};
  if (parts.size() != 4 || !glyphs.contains(parts[1])) return std::nullopt;
  const bool active = parts[2] == "active"_L1;
  const bool dark = parts[3] == "dark"_L1;
  if ((!active && parts[2] != "inactive"_L1) || (!dark && parts[3] != "light"_L1)) {
    return std::nullopt;
  }
  const Theme& theme = dark ? Theme::dark() : Theme::light();
  return VectorPicture{glyphSource(parts[1]), iconSize, iconColour(theme, parts[1], active)};
}

/// The arrow sinks 5 points and fades out, then comes in again from above; frame 1 is at rest.
std::optional<VectorPicture> arrowPicture(const QString& number) {
  const int frame = number.toInt();
  if (number.size() != 2 || frame < 1 || frame > arrowFrames) return std::nullopt;
  const double turn = double(frame - 1) / arrowFrames;
  const double offset = 2.5 * std::sin(turn * 2 * std::numbers::pi);
  const double opacity = 0.8 + 0.2 * std::cos(turn * 2 * std::numbers::pi);
  return VectorPicture{glyphSource(u"arrow-down"_s), arrowSize, markColour, offset, opacity};
}

const QHash<QString, VectorPicture>& singlePictures() {
  static const QHash<QString, VectorPicture> pictures{
      {u"icon-paste-light-white"_s, {glyphSource(u"paste"_s), iconSize, QColor(Qt::white)}},
      {u"icon-paste-light-grey"_s,
       {glyphSource(u"paste"_s), iconSize, Theme::light().secondaryText}},
      {u"safari"_s, {glyphSource(u"safari"_s), iconSize, markColour}},
      {u"chrome"_s, {glyphSource(u"chrome"_s), iconSize, markColour}},
      {u"safari_small"_s, {glyphSource(u"safari"_s), smallSize, markColour}},
      {u"chrome_small"_s, {glyphSource(u"chrome"_s), smallSize, markColour}},
      {u"error_thumbnail"_s, {u"pictures/error-thumbnail.svg"_s, thumbnailSize, std::nullopt}},
  };
  return pictures;
}

std::optional<VectorPicture> pictureNamed(QString name) {
  keepResources();
  if (name.endsWith(".png"_L1)) name.chop(4);
  if (name.endsWith("@2x"_L1, Qt::CaseInsensitive)) name.chop(3);
  if (name.startsWith("arrow-down_"_L1)) return arrowPicture(name.mid(11));
  const auto single = singlePictures().constFind(name);
  if (single != singlePictures().constEnd()) return *single;
  return name.startsWith("icon-"_L1) ? iconPicture(name.split(u'-')) : std::nullopt;
}

}  // namespace

QIcon namedIcon(const QString& name) {
  const auto picture = pictureNamed(name);
  return picture ? QIcon(new VectorIconEngine(*picture)) : QIcon();
}

QPixmap namedPixmap(const QString& name, qreal devicePixelRatio) {
  const auto picture = pictureNamed(name);
  if (!picture) return {};
  QPixmap pixmap = picture->render((picture->size * devicePixelRatio).toSize());
  pixmap.setDevicePixelRatio(devicePixelRatio);
  return pixmap;
}

QIcon glyphIcon(const QString& glyph, const QColor& colour) {
  keepResources();
  return QIcon(new VectorIconEngine({glyphSource(glyph), iconSize, colour}));
}

QIcon applicationIcon() {
  keepResources();
  return QIcon(
      new VectorIconEngine({u"app/com.maplebrook.corvalis.svg"_s, QSizeF(128, 128), std::nullopt}));
}

}  // namespace ui
