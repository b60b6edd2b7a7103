#pragma once

#include "delivery/CVUtils.h"

/// The utilities' real services: the desktop's programs, the user's browsers, the Dropbox account.
/// Main thread, after the application object.
CVUtils::Services makePlatformServices();
