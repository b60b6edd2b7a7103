#pragma once

#include <QUrl>
#include <memory>

#include "delivery/CVUtils.h"

class CVDefaultPreferences;

/// Registers the shared services of a run of the command line: settings that nothing outlives, a
/// working folder of its own, and the destinations' services, if they are needed.
std::shared_ptr<CVDefaultPreferences> registerCommandLineServices(const QUrl& workFolder,
                                                                  CVUtils::Services services);
