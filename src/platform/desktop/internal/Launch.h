#pragma once

#include <QStringList>
#include <chrono>
#include <functional>

#include "platform/base/Error.h"

namespace desktop {

/// The domain of this folder's errors.
inline constexpr char16_t desktopErrorDomain[] = u"com.maplebrook.corvalis.desktop";

enum DesktopErrorCode : int {
  DesktopErrorUnavailable = 1,
  DesktopErrorProgramFailed = 2,
  DesktopErrorNoAnswer = 3,
  DesktopErrorFile = 4,
  DesktopErrorCancelled = 5,
  DesktopErrorTooLarge = 6,
};

Error desktopError(DesktopErrorCode code, const QString& description);

/// Reports one outcome to a completion that may be empty.
using Completion = std::function<void(MaybeError)>;

/// The program's path by the search path of the moment; empty when there is none.
QString findProgram(const QString& name);

/// Starts a program, without a shell, with nothing on its standard streams, in a session of its own
/// so that it outlives this one. `completion` comes once, on the main thread: when it has ended (an
/// error unless with exit code 0), when it could not be started, or when it still runs after
/// `patience` (no error). Any thread.
void launch(const QString& program, const QStringList& arguments,
            std::chrono::milliseconds patience, Completion completion);

/// Opens an absolute path or an encoded address with the program registered for it, by `xdg-open`.
void openWithRegisteredProgram(const QString& target, std::chrono::milliseconds patience,
                               Completion completion);

/// The file's address (RFC 8089), every byte but unreserved ones and slashes percent-encoded, so
/// that it can stand in comma-separated and quoted lists.
QByteArray fileAddress(const QString& path);

}  // namespace desktop
