#pragma once

#include <QString>
#include <QUrl>
#include <memory>
#include <optional>

namespace web {
class Page;
}

namespace capture {

/// What a conversion takes of its entry: the entry may be loading another page before it ends.
struct LoadedPage {
  /// Empty when nothing is loaded.
  std::shared_ptr<web::Page> page;
  QUrl address;
  std::optional<QString> title;
};

/// The same page, to be used on the main thread alone as ever, but held and let go of on any: it
/// ends on the main thread.
std::shared_ptr<web::Page> heldOnAnyThread(std::shared_ptr<web::Page> page);

}  // namespace capture
