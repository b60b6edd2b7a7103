#pragma once

#include <QImage>
#include <QSize>
#include <QSizeF>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/rendering/LowDocumentRule.h"
#include "platform/rendering/PictureReceiver.h"

namespace web {
class Page;
}

namespace rendering {

enum class PictureArea {
  /// From the document's top to its end; bars fixed to the bottom of the viewport stand at the end.
  WholeDocument,
  /// What the viewport shows, as it is scrolled.
  Viewport
};

struct PictureOptions {
  /// Device pixels per CSS pixel.
  double scale = 1;
  PictureArea area = PictureArea::WholeDocument;
  LowDocumentRule lowDocument = {};
};

struct CapturedPicture {
  QSize devicePixels;
  /// The pictured area in CSS pixels.
  QSizeF size;
};

/// Pictures the page on white. The receiver may be called after the callback only in so far as a
/// call that was running ends; nothing new is delivered. Between `settle` and this call nothing
/// else is needed.
void capturePicture(const std::shared_ptr<web::Page>& page, const PictureOptions& options,
                    std::shared_ptr<PictureReceiver> receiver,
                    std::function<void(Result<CapturedPicture>)> callback);

/// The viewport as it is scrolled, one device pixel per CSS pixel, on white: for thumbnails.
void viewportPicture(const std::shared_ptr<web::Page>& page,
                     std::function<void(Result<QImage>)> callback);

}  // namespace rendering
