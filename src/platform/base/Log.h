#pragma once

#include <QLoggingCategory>

/// The program's diagnostics: plain lines to the system log (the journal or standard error).
/// Lines never carry the contents of a page.
Q_DECLARE_LOGGING_CATEGORY(corvalisLog)

/// Writes one line, as it is.
void logLine(const QString& line);

/// The same for what went wrong and is told nowhere else: the command line shows it too.
void logProblem(const QString& line);
