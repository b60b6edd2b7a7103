#pragma once

#include "platform/base/Error.h"

namespace dropbox {

inline constexpr const char* kErrorDomain = "dropbox";

enum ErrorCode {
  /// No account is linked, or it was unlinked while the request ran.
  ErrorNotLinked = 1,
  /// The account has to be linked again: its token was revoked or lacks a permission.
  ErrorAuthorization,
  /// The redirect does not belong to the authorization that was begun here.
  ErrorStateMismatch,
  /// The user refused the authorization.
  ErrorCancelled,
  /// The service refused the request; the description carries its own summary.
  ErrorRequest,
  /// The name exists in the folder already, with other contents.
  ErrorConflict,
  ErrorNoSpace,
  /// The path cannot be written: its name, its folder's rights.
  ErrorPath,
  ErrorRateLimit,
  /// The service failed or answered with what is no answer.
  ErrorService,
  /// No connection, or it broke.
  ErrorNetwork,
  /// The local file cannot be read.
  ErrorFile,
  /// The blocking form was called on the main thread, or the program is ending.
  ErrorUnavailable,
};

Error makeError(ErrorCode code, const QString& description);

}  // namespace dropbox
