#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include "platform/base/Error.h"

namespace desktop {

/// What the user's desktop is told about the program.
struct DesktopIntegrationSettings {
  /// The absolute path that starts the program.
  QString program;
  /// The program's icon, as SVG; empty: none is installed.
  QByteArray scalableIcon;
  /// The same as PNG, by its side in pixels.
  QMap<int, QByteArray> icons = {};
};

/// Makes the program known to the user's desktop, for this user alone: desktop entry, session bus
/// service (so that it is started on demand), type of note files, icon, and the program as the
/// default for the address schemes corvxurl, corvxurls and the Dropbox redirect. Doing it again
/// brings all of it up to date. Blocks while the desktop's databases are updated and the session
/// bus looks for its services anew. Any thread.
MaybeError integrateWithDesktop(const DesktopIntegrationSettings& settings);

/// Undoes it: the user's list of default programs (mimeapps.list) is byte for byte what it was, or,
/// when it has been changed since, loses only what names this program.
MaybeError removeDesktopIntegration();

}  // namespace desktop
