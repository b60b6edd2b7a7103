#pragma once

#include <QtGlobal>

namespace dropbox {

/// Sizes in bytes.
struct UploadLimits {
  /// The largest file that travels in one request; the service takes no more than 150 MiB.
  qint64 singleRequest = 150LL * 1024 * 1024;
  /// The parts of a session; the service wants multiples of 4 MiB.
  qint64 chunk = 16LL * 1024 * 1024;
};

}  // namespace dropbox
