#include "platform/rendering/DocumentSize.h"

#include "platform/rendering/FlatDocument.h"
#include "platform/rendering/PageScript.h"

namespace rendering {

void documentSize(const std::shared_ptr<web::Page>& page,
                  std::function<void(Result<QSizeF>)> callback) {
  callPageScript(page, QStringLiteral("size"), {}, [callback = std::move(callback)](auto value) {
    callback(value.and_then(documentLayoutFromJson).map([](const DocumentLayout& layout) {
      return layout.document;
    }));
  });
}

}  // namespace rendering
