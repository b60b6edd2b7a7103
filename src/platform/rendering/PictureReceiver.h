#pragma once

#include <QImage>
#include <QSize>

#include "platform/base/Error.h"

namespace rendering {

/// Takes a picture in bands of rows from the top. Called on worker threads, one call at a time and
/// in order. A receiver that is slow holds the page back. An error that
/// it returns ends the capture with that error.
class PictureReceiver {
 public:
  virtual ~PictureReceiver() = default;

  /// A picture of this size begins. Called again when the document changed its height while it was
  /// being pictured: everything received so far is void and the picture starts anew.
  virtual MaybeError began(QSize devicePixels) = 0;

  /// The next rows, as wide as the picture and opaque. The bands' heights add up to the picture's.
  virtual MaybeError rows(const QImage& band) = 0;
};

}  // namespace rendering
