#pragma once

#include "platform/base/Error.h"

namespace web {

/// Domain of every error made in this folder.
inline constexpr QStringView errorDomain = u"web";

enum ErrorCode : int {
  EngineNotFound = 1,  ///< no usable browser program on this machine
  EngineNotStarted,    ///< the browser program could not be run
  EngineEnded,         ///< the browser ended by itself, or was killed
  EngineShutDown,      ///< our own side ended the browser
  PageClosed,          ///< the page was closed while the command was under way
  PageCrashed,         ///< the page's renderer ended
  CommandRefused,      ///< the browser answered with an error
  CommandTimedOut,
  DamagedReply,  ///< the answer was no JSON, or lacks what it must carry
  ScriptFailed,  ///< the evaluated script threw
  NoAnswer,      ///< the main request got no answer in its time
  LoadFailed,    ///< network, name, certificate or protocol failure of the main request
  NoDocument,    ///< the main request ended in a download or in nothing to show
  LocalFileRefused,
  LoadStopped,
};

inline Error makeError(ErrorCode code, QString description) {
  return Error{errorDomain.toString(), code, std::move(description)};
}

}  // namespace web
