#pragma once

namespace ui {

/// Whether windows can be translucent: always, but on an X11 screen that has no compositor
/// (Extended Window Manager Hints, "_NET_WM_CM_Sn").
bool isCompositing();

}  // namespace ui
