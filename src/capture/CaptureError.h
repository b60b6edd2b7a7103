#pragma once

#include "platform/base/Error.h"

/// Errors that are made in this folder.
namespace capture {

inline constexpr char16_t errorDomain[] = u"capture";

enum ErrorCode : int {
  Interrupted = 1,  ///< the program is ending
  NotLoaded,        ///< there is no page to convert
  NoResult,         ///< a conversion left no file
  CannotWrite,
  Cancelled,
};

inline Error makeError(ErrorCode code, const QString& description) {
  return Error{QString::fromUtf16(errorDomain), code, description};
}

inline Error interrupted() {
  return makeError(Interrupted, QStringLiteral("The program ended before the page was finished."));
}

}  // namespace capture
