#pragma once

#include <QRectF>
#include <functional>

#include "platform/web/Page.h"

namespace web {

/// Where a page's typing goes, as input methods need to know it.
struct TextInput {
  /// Unknown: in a frame of another site, which cannot be looked into.
  enum class Kind { None, Text, Password, Unknown };
  Kind kind = Kind::Unknown;
  /// Place of the caret in CSS pixels of the viewport, within half a letter; null where it is not
  /// known.
  QRectF caret = {};

  friend bool operator==(const TextInput&, const TextInput&) = default;
};

/// The callback comes within a second; a page that does not answer is Unknown.
void readTextInput(Page& page, std::function<void(const TextInput&)> callback);

}  // namespace web
