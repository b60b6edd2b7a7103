#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/dropbox/FileMetadata.h"

namespace dropbox {

class Connection;

/// Uploads go with the service's default options: a new file is added, and a name that exists
/// already with other contents is a conflict (the same contents are not). Files above the service's
/// limit for one request travel in an upload session, with the same result.
class FilesRoutes {
 public:
  using Completion = std::function<void(Result<FileMetadata>)>;

  explicit FilesRoutes(std::shared_ptr<Connection> connection);

  /// `remotePath` begins with "/" and is relative to the application's folder. May be called on any
  /// thread; `completion` comes once, on the main thread.
  void uploadData(const QString& remotePath, const QByteArray& inputData,
                  Completion completion) const;

  /// As `uploadData`, with the file's bytes read while they are sent. The file must stay until
  /// `completion`.
  void uploadFile(const QString& remotePath, const QString& filePath, Completion completion) const;

  /// Uploads on the main queue while the calling thread waits. For worker threads only: on the main
  /// thread it returns an error at once, for the upload could never end.
  Result<FileMetadata> uploadFileAndWait(const QString& remotePath, const QString& filePath) const;

 private:
  std::shared_ptr<Connection> connection_;
};

}  // namespace dropbox
