#pragma once

#include <QJsonValue>
#include <QSizeF>
#include <functional>
#include <memory>

#include "platform/base/Error.h"

namespace web {
class Page;
}

namespace rendering {

class PageTurn;

enum class FlatPages {
  /// The whole document in one piece: fixed bars keep their place, those at the bottom stand at the
  /// end.
  One,
  /// Fixed bars become part of the document, or each page would repeat them.
  Many
};

/// CSS pixels.
struct DocumentLayout {
  QSizeF document;
  QSizeF viewport;
};

/// A page laid out flat, for pictures and prints that go beyond the viewport: scrolled to its top,
/// with fixed and sticky elements at the places they have in the whole document. Holds the page's
/// turn. `restore` must be called in the end. Main thread only.
class FlatDocument : public std::enable_shared_from_this<FlatDocument> {
 public:
  using Laid = std::function<void(Result<std::shared_ptr<FlatDocument>>)>;

  static void lay(const std::shared_ptr<web::Page>& page, FlatPages pages, Laid callback);

  const DocumentLayout& layout() const { return layout_; }
  const std::shared_ptr<web::Page>& page() const { return page_; }

  /// The layout as it is now; `layout()` keeps the first.
  void measure(std::function<void(Result<DocumentLayout>)> callback);

  /// Puts the page back as it was, gives up the turn and calls `then`, whether or not that went
  /// well.
  void restore(std::function<void()> then);

 private:
  FlatDocument(std::shared_ptr<web::Page> page, std::shared_ptr<PageTurn> turn)
      : page_(std::move(page)), turn_(std::move(turn)) {}

  std::shared_ptr<web::Page> page_;
  std::shared_ptr<PageTurn> turn_;
  DocumentLayout layout_;
};

/// Reads what the page scripts say of sizes.
Result<DocumentLayout> documentLayoutFromJson(const QJsonValue& value);

}  // namespace rendering
