#pragma once

#include <QPoint>

class LivePageView;

/// The menu of the right mouse button at a place of the page (points of the view): what can be done
/// with the link, the selection or the field there. Opens when the page has told what lies there,
/// within a second.
void openPageMenu(LivePageView& view, const QPoint& position);
