#pragma once

#include "platform/base/Error.h"

namespace rendering {

inline constexpr QStringView errorDomain = u"rendering";

enum ErrorCode : int {
  DamagedPicture = 1,  ///< the engine's picture could not be read
  DamagedAnswer,       ///< a page script answered with something else than it should
  NotPrintable,        ///< the engine refused to print the document
  NotOnePage,          ///< no paper was found that takes the document as one page
  FileNotWritten,
  TooHigh,          ///< for one page
  SetupImpossible,  ///< margins that leave no room on the paper
};

inline Error makeError(ErrorCode code, QString description) {
  return Error{errorDomain.toString(), code, std::move(description)};
}

}  // namespace rendering
