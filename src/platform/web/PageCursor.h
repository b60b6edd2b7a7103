#pragma once

#include <QPointF>
#include <functional>

namespace web {

class Page;

/// The shape that the page gives the pointer there, in CSS pixels of the viewport; an arrow where
/// the page does not answer in time. The callback comes on the main queue.
void readPageCursor(Page& page, const QPointF& position,
                    std::function<void(Qt::CursorShape)> callback);

}  // namespace web
