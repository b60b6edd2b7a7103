#include "platform/dropbox/Authorization.h"

#include "platform/dropbox/DropboxError.h"
#include "platform/dropbox/RetriedPost.h"
#include "platform/dropbox/RouteError.h"

namespace dropbox {

using namespace Qt::StringLiterals;

Result<Token> grantedToken(const HttpReply& reply, const QDateTime& now) {
  const QJsonObject json = reply.json();
  if (!reply.isSuccess()) {
    const bool isRefused = json.value(u"error"_s).toString() == u"invalid_grant"_s;
    return tl::unexpected(
        isRefused ? makeError(ErrorAuthorization,
                              u"Dropbox has ended the authorization. Link the account again."_s)
                  : routeError(reply, u"Dropbox"_s));
  }
  Token token;
  token.accessToken = json.value(u"access_token"_s).toString();
  token.refreshToken = json.value(u"refresh_token"_s).toString();
  token.accountId = json.value(u"account_id"_s).toString();
  token.teamId = json.value(u"team_id"_s).toString();
  const qint64 seconds = json.value(u"expires_in"_s).toInteger();
  if (seconds > 0) token.expiresAt = now.addSecs(seconds);
  if (token.accessToken.isEmpty())
    return tl::unexpected(makeError(ErrorService, u"The answer of Dropbox carries no token."_s));
  return token;
}

Authorization::Authorization(Service service, Token token)
    : service_(std::move(service)), token_(std::move(token)) {}

void Authorization::observe(std::function<void(const Token&)> renewed,
                            std::function<void()> refused) {
  renewed_ = std::move(renewed);
  refused_ = std::move(refused);
}

void Authorization::forget() {
  forgotten_ = true;
  token_ = {};
}

void Authorization::renew(const QString& rejected, Completion completion) {
  if (forgotten_) return completion(makeError(ErrorNotLinked, u"No Dropbox account is linked."_s));
  if (token_.accessToken != rejected) return completion(std::nullopt);
  waiting_.push_back(std::move(completion));
  if (waiting_.size() > 1) return;
  PostRequest request = formPost(service_.tokenEndpoint, {{u"grant_type"_s, u"refresh_token"_s},
                                                          {u"refresh_token"_s, token_.refreshToken},
                                                          {u"client_id"_s, service_.appKey}});
  postWithRetries(
      service_.transport, service_.retry, std::move(request),
      [self = shared_from_this()](const Result<HttpReply>& reply) { self->answered(reply); });
}

void Authorization::answered(const Result<HttpReply>& reply) {
  const MaybeError error = accept(reply);
  const std::vector<Completion> waiting = std::exchange(waiting_, {});
  for (const Completion& completion : waiting)
    completion(error);
}

MaybeError Authorization::accept(const Result<HttpReply>& reply) {
  if (!reply) return reply.error();
  if (forgotten_) return makeError(ErrorNotLinked, u"No Dropbox account is linked."_s);
  const Result<Token> granted = grantedToken(*reply, QDateTime::currentDateTimeUtc());
  if (!granted) {
    if (granted.error().code == ErrorAuthorization && refused_) refused_();
    return granted.error();
  }
  // A renewal names neither the account nor, as a rule, the refresh token again.
  token_.accessToken = granted->accessToken;
  token_.expiresAt = granted->expiresAt;
  if (granted->canRefresh()) token_.refreshToken = granted->refreshToken;
  if (renewed_) renewed_(token_);
  return std::nullopt;
}

}  // namespace dropbox
