#pragma once

#include "app/CaptureOptions.h"

/// Decides what of the program's and Qt's log lines reaches standard error.
void installDiagnostics(Verbosity verbosity);
