#pragma once

namespace ui {

/// Shows assistive programs the open popover as a part of the main window: as windows of their own,
/// popups are left out of what is told to them. Main thread.
void installAccessibleWindow();

}  // namespace ui
