#include "platform/dropbox/FilesRoutes.h"

#include <future>

#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/Connection.h"
#include "platform/dropbox/DropboxError.h"
#include "platform/dropbox/Upload.h"

namespace dropbox {

using namespace Qt::StringLiterals;

FilesRoutes::FilesRoutes(std::shared_ptr<Connection> connection)
    : connection_(std::move(connection)) {}

void FilesRoutes::uploadData(const QString& remotePath, const QByteArray& inputData,
                             Completion completion) const {
  dispatch::mainAsync(
      [connection = connection_, remotePath, inputData, completion = std::move(completion)] {
        upload(connection, UploadSource::ofData(inputData), remotePath, completion);
      });
}

void FilesRoutes::uploadFile(const QString& remotePath, const QString& filePath,
                             Completion completion) const {
  dispatch::mainAsync(
      [connection = connection_, remotePath, filePath, completion = std::move(completion)] {
        const Result<UploadSource> source = UploadSource::ofFile(filePath);
        if (!source) return completion(tl::unexpected(source.error()));
        upload(connection, *source, remotePath, completion);
      });
}

Result<FileMetadata> FilesRoutes::uploadFileAndWait(const QString& remotePath,
                                                    const QString& filePath) const {
  if (dispatch::isMainThread())
    return tl::unexpected(
        makeError(ErrorUnavailable, u"An upload cannot be waited for on the main thread."_s));
  auto promise = std::make_shared<std::promise<Result<FileMetadata>>>();
  std::future<Result<FileMetadata>> result = promise->get_future();
  uploadFile(remotePath, filePath,
             [promise](Result<FileMetadata> file) { promise->set_value(std::move(file)); });
  // From here the upload alone holds the promise: when the main queue ends and drops it, the wait
  // ends too.
  promise.reset();
  try {
    return result.get();
  } catch (const std::future_error&) {
    return tl::unexpected(makeError(ErrorUnavailable, u"The program is ending."_s));
  }
}

}  // namespace dropbox
