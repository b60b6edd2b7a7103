#pragma once

#include <QIODevice>
#include <functional>
#include <memory>

#include "platform/dropbox/FilesRoutes.h"
#include "platform/dropbox/RetriedPost.h"

namespace dropbox {

class Connection;

/// What is uploaded, readable in parts and more than once.
struct UploadSource {
  /// The size at the beginning of the upload; the source refuses to open once it has changed.
  qint64 size = 0;
  /// The whole, open for reading.
  std::function<Result<std::unique_ptr<QIODevice>>()> open;

  static UploadSource ofData(const QByteArray& data);
  static Result<UploadSource> ofFile(const QString& path);

  /// A part as a request body.
  std::function<Result<std::unique_ptr<QIODevice>>()> part(qint64 offset, qint64 length) const;
};

/// A request of a content route: the argument travels in a header, the body is the file's bytes.
PostRequest contentPost(const Connection& connection, const QString& route,
                        const QJsonObject& argument);

/// The options that the service takes for a plain upload.
QJsonObject commitOf(const QString& remotePath);

/// The stored file in a successful answer, or what the refusal means.
Result<FileMetadata> storedFile(const HttpReply& reply, const QString& remotePath);

/// Uploads in one request or in a session, by the size. Main thread.
void upload(std::shared_ptr<Connection> connection, const UploadSource& source,
            const QString& remotePath, FilesRoutes::Completion completion);

}  // namespace dropbox
