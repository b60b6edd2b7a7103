#pragma once

#include <QStringList>
#include <optional>

#include "platform/base/Error.h"

/// `corvalis open ADDRESS...`: addresses and capture requests for the window; "-" stands for one
/// request that is read from standard input.
namespace OpenCommand {

QString help();

/// Replaces each "-" by the request on standard input. Blocks until the other side closes.
Result<QStringList> readRequests(const QStringList& arguments);

/// Whether a window took the requests: the running one, or one that the desktop started for them.
Result<bool> handOver(const QStringList& requests);

}  // namespace OpenCommand
