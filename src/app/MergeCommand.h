#pragma once

#include <QStringList>

/// `corvalis merge -o OUT.pdf A.pdf B.pdf...`: joins PDF files. Returns the exit status.
int runMergeCommand(const QStringList& arguments);
