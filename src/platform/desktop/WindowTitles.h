#pragma once

#include <QStringList>

namespace desktop {

/// The titles of the windows on the X11 display, the one in front first, as the window manager
/// stacks them. Empty where there is no X11 display or its window manager does not tell (Extended
/// Window Manager Hints, _NET_CLIENT_LIST_STACKING). Any thread.
QStringList windowTitlesFromFront();

}  // namespace desktop
