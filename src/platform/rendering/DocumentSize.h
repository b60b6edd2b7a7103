#pragma once

#include <QSizeF>
#include <functional>
#include <memory>

#include "platform/base/Error.h"

namespace web {
class Page;
}

namespace rendering {

/// The document's own size in CSS pixels, whole numbers: as wide as the layout or as its overflow
/// to the right, and as high as its boxes reach, which may be less than the viewport's height (0
/// for an empty document).
void documentSize(const std::shared_ptr<web::Page>& page,
                  std::function<void(Result<QSizeF>)> callback);

}  // namespace rendering
