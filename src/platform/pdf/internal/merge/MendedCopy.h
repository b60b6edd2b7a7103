#pragma once

#include <QTemporaryFile>
#include <memory>

#include "platform/base/Error.h"

namespace pdf {

/// A copy of a document that says the same in the plainest form: repaired, without encryption and
/// object streams, and with its form fields drawn into the pages as they look.
Result<std::unique_ptr<QTemporaryFile>> mendedCopy(const QString& path);

}  // namespace pdf
