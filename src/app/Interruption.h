#pragma once

#include <functional>

/// Calls `interrupted` on the main thread when the program is asked to end (SIGINT, SIGTERM,
/// SIGHUP), so that it can end its engine and remove its files. A second signal ends it at once.
void onInterruption(std::function<void(int signal)> interrupted);
