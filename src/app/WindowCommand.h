#pragma once

#include <QStringList>

/// Opens the main window, or brings the one that is open to the front, and hands it the requests.
/// `action` names an action of the desktop entry that the new window carries out, or is empty.
/// Returns the exit status when the window has been closed or the requests were handed over.
int runWindowCommand(int& argc, char** argv, const QStringList& requests,
                     const QString& action = {});
