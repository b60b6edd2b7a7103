#include "platform/rendering/ViewportPicture.h"

#include <QJsonObject>

#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/PageTurn.h"
#include "platform/rendering/RenderingError.h"
#include "platform/web/Page.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

QSizeF viewportSize(const web::Page& page) {
  return {page.configuration().layoutWidth, page.configuration().viewportHeight};
}

/// The engine pictures the viewport at the page's own device scale; other scales are made from
/// that.
Result<QImage> scaledPicture(const QByteArray& png, QSizeF viewport, double scale) {
  QImage image = QImage::fromData(png, "PNG").convertToFormat(QImage::Format_RGB32);
  if (image.isNull()) {
    return tl::unexpected(
        makeError(DamagedPicture, u"The page engine's picture of the page could not be read."_s));
  }
  const QSize wanted = (viewport * scale).toSize();
  if (image.size() == wanted) return image;
  return image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

void takePicture(const std::shared_ptr<web::Page>& page,
                 std::function<void(Result<QByteArray>)> callback) {
  PageTurn::take(page, [page, callback = std::move(callback)](std::shared_ptr<PageTurn> turn) {
    page->sendForData(
        u"Page.captureScreenshot"_s, {{"format"_L1, u"png"_s}, {"optimizeForSpeed"_L1, true}},
        {"data", {}}, [page, turn, callback](Result<web::DataReply> reply) mutable {
          turn.reset();
          callback(std::move(reply).map([](web::DataReply&& data) { return data.data; }));
        });
  });
}

}  // namespace

void viewportPicture(const std::shared_ptr<web::Page>& page,
                     std::function<void(Result<QImage>)> callback) {
  const QSizeF size = viewportSize(*page);
  takePicture(page, [size, callback = std::move(callback)](Result<QByteArray> png) {
    if (!png) return callback(tl::unexpected(png.error()));
    dispatch::globalAsync(dispatch::Priority::Default, [png = *png, size, callback] {
      dispatch::mainAsync([callback, picture = scaledPicture(png, size, 1)] { callback(picture); });
    });
  });
}

void captureViewport(const std::shared_ptr<web::Page>& page, double scale,
                     std::shared_ptr<PictureReceiver> receiver,
                     std::function<void(Result<CapturedPicture>)> callback) {
  const QSizeF size = viewportSize(*page);
  const auto deliver = [size, scale, receiver](const QByteArray& png) -> Result<CapturedPicture> {
    const Result<QImage> picture = scaledPicture(png, size, scale);
    if (!picture) return tl::unexpected(picture.error());
    if (MaybeError error = receiver->began(picture->size())) return tl::unexpected(*error);
    if (MaybeError error = receiver->rows(*picture)) return tl::unexpected(*error);
    return CapturedPicture{picture->size(), size};
  };
  takePicture(page, [deliver, callback = std::move(callback)](Result<QByteArray> png) {
    if (!png) return callback(tl::unexpected(png.error()));
    dispatch::globalAsync(dispatch::Priority::High, [png = *png, deliver, callback] {
      dispatch::mainAsync([callback, result = deliver(png)] { callback(result); });
    });
  });
}

}  // namespace rendering
