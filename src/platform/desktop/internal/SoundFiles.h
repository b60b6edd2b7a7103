#pragma once

#include <QUrl>

namespace desktop {

/// The sound theme's name of a sound (freedesktop "Sound Naming Specification"); empty for one that
/// no theme has.
QString soundThemeName(const QString& sound);

/// What to play for a sound: a bundled file, or the desktop theme's; empty when there is none.
QUrl soundSource(const QString& sound);

}  // namespace desktop
