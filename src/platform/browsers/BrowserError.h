#pragma once

#include "platform/base/Error.h"

namespace browsers {

inline constexpr char16_t errorDomain[] = u"com.maplebrook.corvalis.browsers";

enum ErrorCode : int {
  /// Nothing listens, or it is no DevTools server.
  NoEndpoint = 1,
  /// The browser asks its user for leave and has not got it, or has refused.
  NotAllowed,
  NoAnswer,
  Refused,
  NoPage,
  BadMessage,
  TooLarge,
  File,
};

inline tl::unexpected<Error> browserFailure(ErrorCode code, QString description) {
  return failure(QString::fromUtf16(errorDomain), code, std::move(description));
}

}  // namespace browsers
