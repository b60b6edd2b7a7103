#pragma once

#include <QStringList>

/// `corvalis integrate [--remove]`: makes the program known to the user's desktop and to each of
/// the user's browsers, or takes that back. The exit status.
int runIntegrateCommand(const QStringList& arguments);
