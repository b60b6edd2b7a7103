#pragma once

#include <QString>

#include "platform/base/Error.h"

namespace imaging {

/// Codes of the error domain "Imaging".
enum class ImagingError {
  NoPicture = 1,     ///< no pixels, or rows missing
  TooLarge = 2,      ///< beyond what the kind of file can hold
  CannotWrite = 3,   ///< folder, disk
  CannotRead = 4,    ///< the source is missing, damaged or of an unknown kind
  CannotEncode = 5,  ///< the encoder gave up or is not installed
};

inline Error imagingError(ImagingError code, QString description) {
  return {QStringLiteral("Imaging"), int(code), std::move(description)};
}

}  // namespace imaging
