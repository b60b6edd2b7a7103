#include "platform/dropbox/Upload.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>

#include "platform/dropbox/ApiCall.h"
#include "platform/dropbox/AsciiJson.h"
#include "platform/dropbox/Connection.h"
#include "platform/dropbox/DropboxError.h"
#include "platform/dropbox/RouteError.h"
#include "platform/dropbox/Slice.h"
#include "platform/dropbox/UploadSession.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

tl::unexpected<Error> fileFailure(const QString& path, const QString& reason) {
  return tl::unexpected(makeError(ErrorFile, u"“%1” cannot be read: %2"_s.arg(path, reason)));
}

Result<std::unique_ptr<QIODevice>> openFile(const QString& path, qint64 expectedSize) {
  auto file = std::make_unique<QFile>(path);
  if (!file->open(QIODevice::ReadOnly)) return fileFailure(path, file->errorString());
  if (file->size() != expectedSize) return fileFailure(path, u"it changed during the upload"_s);
  return file;
}

}  // namespace

UploadSource UploadSource::ofData(const QByteArray& data) {
  return {data.size(), [data]() -> Result<std::unique_ptr<QIODevice>> {
            auto buffer = std::make_unique<QBuffer>();
            buffer->setData(data);
            buffer->open(QIODevice::ReadOnly);
            return buffer;
          }};
}

Result<UploadSource> UploadSource::ofFile(const QString& path) {
  QFile file(path);
  if (!QFileInfo(path).isFile()) return fileFailure(path, u"there is no such file"_s);
  if (!file.open(QIODevice::ReadOnly)) return fileFailure(path, file.errorString());
  const qint64 size = file.size();
  return UploadSource{size, [path, size] { return openFile(path, size); }};
}

std::function<Result<std::unique_ptr<QIODevice>>()> UploadSource::part(qint64 offset,
                                                                       qint64 length) const {
  return [open = open, offset, length]() -> Result<std::unique_ptr<QIODevice>> {
    auto whole = open();
    if (!whole) return whole;
    return std::make_unique<Slice>(std::move(*whole), offset, length);
  };
}

PostRequest contentPost(const Connection& connection, const QString& route,
                        const QJsonObject& argument) {
  PostRequest post;
  post.request = QNetworkRequest(connection.endpoints.content.resolved(QUrl(route)));
  post.request.setRawHeader("Dropbox-API-Arg", asciiJson(argument));
  post.request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/octet-stream"_s);
  return post;
}

QJsonObject commitOf(const QString& remotePath) {
  return {{u"path"_s, remotePath},
          {u"mode"_s, u"add"_s},
          {u"autorename"_s, false},
          {u"mute"_s, false},
          {u"strict_conflict"_s, false}};
}

Result<FileMetadata> storedFile(const HttpReply& reply, const QString& remotePath) {
  if (!reply.isSuccess()) return tl::unexpected(routeError(reply, remotePath));
  const QJsonObject json = reply.json();
  FileMetadata file;
  file.id = json.value(u"id"_s).toString();
  file.name = json.value(u"name"_s).toString();
  file.pathDisplay = json.value(u"path_display"_s).toString();
  file.revision = json.value(u"rev"_s).toString();
  file.size = json.value(u"size"_s).toInteger();
  file.contentHash = json.value(u"content_hash"_s).toString();
  if (file.id.isEmpty())
    return tl::unexpected(makeError(ErrorService, u"The answer of Dropbox cannot be read."_s));
  return file;
}

void upload(std::shared_ptr<Connection> connection, const UploadSource& source,
            const QString& remotePath, FilesRoutes::Completion completion) {
  if (source.size > connection->limits.singleRequest)
    return uploadInSession(std::move(connection), source, remotePath, std::move(completion));
  // Sending it again after a lost answer is safe: the same contents under the same name are no
  // conflict.
  PostRequest post = contentPost(*connection, u"files/upload"_s, commitOf(remotePath));
  post.subject = remotePath;
  post.openBody = source.part(0, source.size);
  callApi(std::move(connection), std::move(post),
          [remotePath, completion = std::move(completion)](const Result<HttpReply>& reply) {
            if (!reply) return completion(tl::unexpected(reply.error()));
            completion(storedFile(*reply, remotePath));
          });
}

}  // namespace dropbox
