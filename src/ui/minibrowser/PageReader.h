#pragma once

#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace web {
class WebView;
}

/// What a snap takes from a page. A part is missing when the page's process does not answer.
struct PageContents {
  std::optional<QString> markup;
  std::optional<QString> styles;
  std::optional<QString> frames;
  /// The document's own, in points.
  QSizeF size;
};

/// Reads the page as it stands now, with what its user has typed and chosen in it. Passwords stay
/// out. `callback` comes once, on the main queue, in 40 s at most. Main thread.
void readPage(const std::shared_ptr<web::WebView>& view,
              std::function<void(PageContents)> callback);
