#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <QString>
#include <functional>
#include <memory>
#include <qpdf/QPDF.hh>
#include <string>

#include "platform/base/Error.h"

namespace pdf {

/// How a document's bytes are reached while it is in use.
enum class FileAccess {
  /// Files of moderate size are held in memory, others are kept open.
  Quick,
  /// The file is opened for each reading, so that any number of documents of any size can be in
  /// use.
  OpenOnDemand,
};

/// Opens a document, without warnings on standard error, and finds its pages: what is damaged is
/// repaired here or not at all.
Result<std::unique_ptr<QPDF>> openQpdf(const QString& path, FileAccess access = FileAccess::Quick);

/// Writes `document` beside `path` and moves it there, in no older version of the format than
/// `leastVersion`.
MaybeError writeQpdf(QPDF& document, const QString& path, const std::string& leastVersion = {});

/// Runs `work` and turns what qpdf throws into an error of `code` whose text begins with `what`.
MaybeError catchingQpdf(int code, const QString& what, const std::function<void()>& work);

}  // namespace pdf
