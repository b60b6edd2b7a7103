#pragma once

#include <QRectF>
#include <QString>
#include <functional>

#include "platform/base/Error.h"
#include "platform/printing/PrintInfo.h"

namespace printing {

/// What a print operation can print. Main thread.
class PrintableView {
 public:
  virtual ~PrintableView() = default;

  /// In points, in the coordinates of the view around it.
  virtual QRectF frame() const = 0;
  /// True when the view's vertical axis points down.
  virtual bool isFlipped() const = 0;

  /// Writes the pages, with what the view draws in their margins, as one PDF to `path`, whole or
  /// not at all, paginated as `info` says. `completion` comes once, on the main thread, never
  /// before the call has returned.
  virtual void printTo(const PrintInfo& info, const QString& path,
                       std::function<void(MaybeError)> completion) = 0;
};

}  // namespace printing
