#pragma once

#include "platform/dropbox/Upload.h"

namespace dropbox {

/// Uploads in parts of `connection.limits.chunk` and joins them at the service. Main thread.
void uploadInSession(std::shared_ptr<Connection> connection, const UploadSource& source,
                     const QString& remotePath, FilesRoutes::Completion completion);

}  // namespace dropbox
