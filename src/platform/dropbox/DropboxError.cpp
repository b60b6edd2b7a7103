#include "platform/dropbox/DropboxError.h"

namespace dropbox {

Error makeError(ErrorCode code, const QString& description) {
  return Error{QString::fromLatin1(kErrorDomain), code, description};
}

}  // namespace dropbox
