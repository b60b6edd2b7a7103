#pragma once

#include <QStringList>

/// `corvalis native-host`, started by a browser for our add-on: frames on standard input and
/// output, until the browser closes them. Needs no display. The exit status.
int runNativeHostCommand(const QStringList& arguments);
