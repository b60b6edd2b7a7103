#pragma once

#include <QUrl>
#include <memory>

class CVDefaultPreferences;
namespace defaults {
class UserDefaults;
}

/// Registers the shared services of a run of the command line: settings that nothing outlives, and
/// a working folder of its own.
std::shared_ptr<CVDefaultPreferences> registerCommandLineServices(const QUrl& workFolder);
