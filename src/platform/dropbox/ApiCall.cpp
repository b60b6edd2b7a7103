#include "platform/dropbox/ApiCall.h"

#include "platform/dropbox/Connection.h"
#include "platform/dropbox/DropboxError.h"
#include "platform/dropbox/RouteError.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

class ApiCall : public std::enable_shared_from_this<ApiCall> {
 public:
  using Completion = std::function<void(Result<HttpReply>)>;

  ApiCall(std::shared_ptr<Connection> connection, PostRequest request, Completion completion)
      : connection_(std::move(connection)),
        request_(std::move(request)),
        completion_(std::move(completion)) {}

  void start() {
    const Token& token = connection_->authorization->token();
    if (token.canRefresh() && token.isExpired(QDateTime::currentDateTimeUtc()))
      return renewAndSend();
    send();
  }

 private:
  void send() {
    if (connection_->authorization->isForgotten())
      return fail(makeError(ErrorNotLinked, u"No Dropbox account is linked."_s));
    sentToken_ = connection_->authorization->token().accessToken;
    PostRequest post = request_;
    post.request.setRawHeader("Authorization", "Bearer " + sentToken_.toUtf8());
    if (!connection_->teamMemberId.isEmpty())
      post.request.setRawHeader("Dropbox-API-Select-User", connection_->teamMemberId.toUtf8());
    postWithRetries(
        connection_->transport, connection_->retry, std::move(post),
        [self = shared_from_this()](const Result<HttpReply>& reply) { self->answered(reply); });
  }

  void renewAndSend() {
    renewed_ = true;
    connection_->authorization->renew(connection_->authorization->token().accessToken,
                                      [self = shared_from_this()](const MaybeError& error) {
                                        if (error) return self->fail(*error);
                                        self->send();
                                      });
  }

  void answered(const Result<HttpReply>& reply) {
    if (!reply || reply->isSuccess() || reply->status == 409) return completion_(reply);
    const bool isExpired =
        reply->status == 401 && errorTags(*reply).contains(u"expired_access_token"_s);
    const auto& authorization = connection_->authorization;
    if (isExpired && authorization->token().accessToken != sentToken_) return send();
    if (isExpired && !renewed_ && authorization->token().canRefresh()) return renewAndSend();
    fail(routeError(*reply, request_.subject));
  }

  void fail(const Error& error) { completion_(tl::unexpected(error)); }

  std::shared_ptr<Connection> connection_;
  PostRequest request_;
  Completion completion_;
  QString sentToken_;
  bool renewed_ = false;
};

}  // namespace

void callApi(std::shared_ptr<Connection> connection, PostRequest request,
             std::function<void(Result<HttpReply>)> completion) {
  std::make_shared<ApiCall>(std::move(connection), std::move(request), std::move(completion))
      ->start();
}

}  // namespace dropbox
