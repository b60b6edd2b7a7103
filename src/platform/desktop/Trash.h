#pragma once

#include <QString>

#include "platform/base/Error.h"

namespace desktop {

/// Moves a file or folder to the user's trash (freedesktop "Trash specification") and returns where
/// it lies now. Any thread.
Result<QString> moveToTrash(const QString& path);

}  // namespace desktop
