#pragma once

#include <QString>

#include "platform/base/Error.h"

namespace browsers {

/// Lets the add-on in each browser that the user has ever started reach `program` (an absolute
/// path): a native-messaging manifest in the browser's own folder, and a starter that all of them
/// name, because a manifest can carry no arguments. For this user alone. Doing it again brings all
/// of it up to date. Any thread.
MaybeError installHostManifests(const QString& program);

/// Undoes it: removes what the installation has made, folders included where they are empty.
MaybeError removeHostManifests();

}  // namespace browsers
