#include "platform/dropbox/FileMetadata.h"

namespace dropbox {

QString FileMetadata::description() const {
  return QStringLiteral("%1 (%2 bytes, revision %3, id %4)")
      .arg(pathDisplay)
      .arg(size)
      .arg(revision, id);
}

}  // namespace dropbox
