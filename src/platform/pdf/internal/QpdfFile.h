#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <QString>
#include <functional>
#include <optional>
#include <qpdf/QPDF.hh>

#include "platform/base/Error.h"

namespace pdf {

/// How a document's bytes are reached while it is in use.
enum class FileAccess {
  KeepOpen,
  /// The file is opened for each reading, so that any number of documents can be in use.
  OpenOnDemand,
};

/// Opens `path` into `document`, without warnings on standard error, and finds its pages: what is
/// damaged is repaired here or not at all.
MaybeError openQpdf(QPDF& document, const QString& path, FileAccess access = FileAccess::KeepOpen);

/// Writes `document` beside `path` and moves it there. `producedBy` names what the bytes are when
/// it fails.
MaybeError writeQpdf(QPDF& document, const QString& path);

/// Runs `work` and turns what qpdf throws into an error of `code` whose text begins with `what`.
MaybeError catchingQpdf(int code, const QString& what, const std::function<void()>& work);

}  // namespace pdf
