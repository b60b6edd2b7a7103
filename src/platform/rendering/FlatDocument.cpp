#include "platform/rendering/FlatDocument.h"

#include <QJsonObject>

#include "platform/rendering/PageScript.h"
#include "platform/rendering/PageTurn.h"
#include "platform/rendering/RenderingError.h"

namespace rendering {

using namespace Qt::StringLiterals;

Result<DocumentLayout> documentLayoutFromJson(const QJsonValue& value) {
  const QJsonObject size = value.toObject();
  const DocumentLayout layout{
      {size.value("width"_L1).toDouble(), size.value("height"_L1).toDouble()},
      {size.value("viewportWidth"_L1).toDouble(), size.value("viewportHeight"_L1).toDouble()}};
  if (layout.document.width() >= 1 && layout.viewport.height() >= 1) return layout;
  return tl::unexpected(makeError(DamagedAnswer, u"The page's size could not be found out."_s));
}

void FlatDocument::lay(const std::shared_ptr<web::Page>& page, FlatPages pages, Laid callback) {
  PageTurn::take(page, [page, pages, callback = std::move(callback)](auto turn) {
    std::shared_ptr<FlatDocument> flat(new FlatDocument(page, std::move(turn)));
    const QString mode = pages == FlatPages::One ? u"one"_s : u"many"_s;
    callPageScript(page, u"flatten"_s, {mode}, [flat, callback](Result<QJsonValue> value) {
      Result<DocumentLayout> layout = value.and_then(documentLayoutFromJson);
      if (layout) {
        flat->layout_ = *layout;
        return callback(flat);
      }
      flat->restore([callback, error = layout.error()] { callback(tl::unexpected(error)); });
    });
  });
}

void FlatDocument::measure(std::function<void(Result<DocumentLayout>)> callback) {
  callPageScript(page_, u"size"_s, {},
                 [self = shared_from_this(), callback = std::move(callback)](auto value) {
                   callback(value.and_then(documentLayoutFromJson));
                 });
}

void FlatDocument::restore(std::function<void()> then) {
  callPageScript(page_, u"restore"_s, {},
                 [self = shared_from_this(), then = std::move(then)](const auto&) {
                   self->turn_.reset();
                   then();
                 });
}

}  // namespace rendering
