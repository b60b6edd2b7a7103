#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <QIODevice>
#include <QString>
#include <functional>
#include <memory>
#include <qpdf/QPDF.hh>

#include "platform/base/Error.h"

namespace pdf {

/// Opens a document, without warnings on standard error, and finds its pages: what is damaged is
/// repaired here or not at all.
Result<std::unique_ptr<QPDF>> openQpdf(const QString& path);

/// Writes `document` beside `path` and moves it there.
MaybeError writeQpdf(QPDF& document, const QString& path);

/// Writes `document` decrypted and without object streams; streams stay packed as they are. Throws
/// what qpdf throws, or `std::runtime_error` when the device takes no more.
void writePlainly(QPDF& document, QIODevice& device);

/// Runs `work` and turns what qpdf throws into an error of `code` whose text begins with `what`.
MaybeError catchingQpdf(int code, const QString& what, const std::function<void()>& work);

}  // namespace pdf
