#pragma once

#include <QPointF>
#include <functional>
#include <optional>

#include "platform/web/Page.h"

namespace web {

/// The list of a `select` element, which the browser draws in a window that pictures of the page do
/// not have: it is found under the pointer before the page hears of the press.
using SelectCallback = std::function<void(std::optional<ChoiceRequest>)>;

/// Looks for a select element that would open a list at `position` (CSS pixels) and gives it the
/// focus. The callback comes within a second.
void findSelect(Page& page, const QPointF& position, SelectCallback callback);
/// Chooses an option of the element that was found last, as a user does: with input and change
/// events.
void chooseOption(Page& page, int index);

}  // namespace web
