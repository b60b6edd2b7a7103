#pragma once

#include <QHash>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <optional>

namespace rendering {

/// Which directions of the viewport change when the page is printed.
enum class ViewportChange { Height, Both };

/// The viewport of the screen layout in CSS pixels, and which media features hold there.
struct ScreenViewport {
  QSizeF size;
  ViewportChange change = ViewportChange::Height;
  /// By condition as `viewportConditions` names it.
  QHash<QString, bool> conditions;
};

/// The media features of a style sheet, as "(min-height: 40em)", whose answer depends on a changing
/// direction of the viewport.
QStringList viewportConditions(const QString& css, ViewportChange change);

/// The style sheet with every length in viewport units (CSS Values and Units 4, 6.1.2) as pixels of
/// the screen, and every such media feature as its answer there. None when there is nothing to
/// change. Names, strings and comments are left alone.
std::optional<QString> settledStyleSheet(const QString& css, const ScreenViewport& viewport);

/// The same for the declarations of one element, and for a media condition.
std::optional<QString> settledDeclarations(const QString& css, const ScreenViewport& viewport);
std::optional<QString> settledMedia(const QString& media, const ScreenViewport& viewport);

}  // namespace rendering
