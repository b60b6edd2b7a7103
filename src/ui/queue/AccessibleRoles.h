#pragma once

namespace ui {

/// Tells assistive programs that the queue is a list and its rows are the items. Main thread.
void installAccessibleRoles();

}  // namespace ui
