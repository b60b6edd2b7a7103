#pragma once

#include "platform/rendering/CapturePicture.h"

namespace rendering {

/// The viewport as it is scrolled, as one strip.
void captureViewport(const std::shared_ptr<web::Page>& page, double scale,
                     std::shared_ptr<PictureReceiver> receiver,
                     std::function<void(Result<CapturedPicture>)> callback);

}  // namespace rendering
