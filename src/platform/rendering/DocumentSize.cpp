#include "platform/rendering/DocumentSize.h"

#include "platform/rendering/FlatDocument.h"
#include "platform/rendering/PageScript.h"
#include "platform/rendering/PageTurn.h"

namespace rendering {

void documentSize(const std::shared_ptr<web::Page>& page,
                  std::function<void(Result<QSizeF>)> callback) {
  PageTurn::take(page, [page, callback = std::move(callback)](std::shared_ptr<PageTurn> turn) {
    callPageScript(page, QStringLiteral("size"), {}, [turn, callback](auto value) mutable {
      turn.reset();
      callback(value.and_then(documentLayoutFromJson).map([](const DocumentLayout& layout) {
        return layout.document;
      }));
    });
  });
}

}  // namespace rendering
