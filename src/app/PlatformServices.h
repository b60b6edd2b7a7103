#pragma once

#include "delivery/CVUtils.h"

namespace browsers {
class AddOnDoor;
}

/// The utilities' real services: the desktop's programs, the user's browsers, the Dropbox account.
/// Without a door, browsers are not asked by our add-on. Main thread, after the application object.
CVUtils::Services makePlatformServices(std::shared_ptr<browsers::AddOnDoor> addOnDoor = nullptr);
