#pragma once

#include <QUrl>

/// The user's home folder, as a file address.
QUrl userHomeFolder();

/// The user's desktop folder (the xdg-user-dirs one), as a file address. It need not exist.
QUrl userDesktopFolder();
