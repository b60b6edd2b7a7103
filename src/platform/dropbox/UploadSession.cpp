#include "platform/dropbox/UploadSession.h"

#include <QJsonObject>

#include "platform/base/Log.h"
#include "platform/dropbox/ApiCall.h"
#include "platform/dropbox/Connection.h"
#include "platform/dropbox/DropboxError.h"
#include "platform/dropbox/RouteError.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

/// Corrections of the offset and new sessions that one upload may need before it is given up.
constexpr int kMostRepairs = 10;

class UploadSession : public std::enable_shared_from_this<UploadSession> {
 public:
  UploadSession(std::shared_ptr<Connection> connection, UploadSource source, QString remotePath,
                FilesRoutes::Completion completion)
      : connection_(std::move(connection)),
        source_(std::move(source)),
        remotePath_(std::move(remotePath)),
        completion_(std::move(completion)) {}

  void start() {
    offset_ = 0;
    sessionId_.clear();
    call(u"files/upload_session/start"_s, {{u"close"_s, false}}, nextLength(),
         &UploadSession::started);
  }

 private:
  using Handler = void (UploadSession::*)(const HttpReply&);

  qint64 nextLength() const { return qMin(connection_->limits.chunk, source_.size - offset_); }

  QJsonObject cursor() const { return {{u"session_id"_s, sessionId_}, {u"offset"_s, offset_}}; }

  void call(const QString& route, const QJsonObject& argument, qint64 length, Handler handler) {
    PostRequest post = contentPost(*connection_, route, argument);
    post.subject = remotePath_;
    post.openBody = source_.part(offset_, length);
    callApi(connection_, std::move(post),
            [self = shared_from_this(), handler](const Result<HttpReply>& reply) {
              if (!reply) return self->completion_(tl::unexpected(reply.error()));
              (self.get()->*handler)(*reply);
            });
  }

  void started(const HttpReply& reply) {
    sessionId_ = reply.json().value(u"session_id"_s).toString();
    if (!reply.isSuccess()) return fail(reply);
    if (sessionId_.isEmpty())
      return completion_(
          tl::unexpected(makeError(ErrorService, u"The answer of Dropbox cannot be read."_s)));
    offset_ = nextLength();
    proceed();
  }

  /// The last part goes with the request that joins the parts.
  void proceed() {
    const qint64 length = nextLength();
    if (offset_ + length < source_.size)
      call(u"files/upload_session/append_v2"_s, {{u"cursor"_s, cursor()}, {u"close"_s, false}},
           length, &UploadSession::appended);
    else
      call(u"files/upload_session/finish"_s,
           {{u"cursor"_s, cursor()}, {u"commit"_s, commitOf(remotePath_)}}, length,
           &UploadSession::finished);
  }

  void appended(const HttpReply& reply) {
    if (!reply.isSuccess()) return repair(reply);
    offset_ += nextLength();
    proceed();
  }

  void finished(const HttpReply& reply) {
    if (!reply.isSuccess()) return repair(reply);
    completion_(storedFile(reply, remotePath_));
  }

  /// After a lost answer the service may hold more than was counted here, or have the file already:
  /// it says which offset it wants, or that the session is over. Then the upload begins again,
  /// which is harmless, for the same contents under the same name are no conflict.
  void repair(const HttpReply& reply) {
    if (++repairs_ > kMostRepairs) return fail(reply);
    const std::optional<qint64> wanted = correctOffset(reply);
    if (wanted && *wanted >= 0 && *wanted <= source_.size) {
      logLine(u"Dropbox: the upload goes on at byte %1"_s.arg(*wanted));
      offset_ = *wanted;
      return proceed();
    }
    const QStringList tags = errorTags(reply);
    const bool isOver = tags.contains(u"not_found"_s) || tags.contains(u"closed"_s);
    if (!isOver || restarted_) return fail(reply);
    logLine(u"Dropbox: the upload begins again"_s);
    restarted_ = true;
    start();
  }

  void fail(const HttpReply& reply) { completion_(tl::unexpected(routeError(reply, remotePath_))); }

  std::shared_ptr<Connection> connection_;
  UploadSource source_;
  QString remotePath_;
  FilesRoutes::Completion completion_;
  QString sessionId_;
  qint64 offset_ = 0;
  int repairs_ = 0;
  bool restarted_ = false;
};

}  // namespace

void uploadInSession(std::shared_ptr<Connection> connection, const UploadSource& source,
                     const QString& remotePath, FilesRoutes::Completion completion) {
  std::make_shared<UploadSession>(std::move(connection), source, remotePath, std::move(completion))
      ->start();
}

}  // namespace dropbox
