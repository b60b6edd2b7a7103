#pragma once

#include <QUrl>
#include <functional>
#include <memory>
#include <vector>

#include "platform/base/Error.h"
#include "platform/dropbox/HttpReply.h"
#include "platform/dropbox/RetryPolicy.h"
#include "platform/dropbox/Token.h"

namespace dropbox {

class Transport;

/// The token of one linked account and its renewal (RFC 6749, section 6). Main thread.
class Authorization : public std::enable_shared_from_this<Authorization> {
 public:
  struct Service {
    std::shared_ptr<Transport> transport;
    QUrl tokenEndpoint;
    RetryPolicy retry;
    QString appKey;
  };
  using Completion = std::function<void(MaybeError)>;

  Authorization(Service service, Token token);

  /// `renewed` is told each new token, `refused` that the service will never renew this one again.
  void observe(std::function<void(const Token&)> renewed, std::function<void()> refused);

  const Token& token() const { return token_; }
  bool isForgotten() const { return forgotten_; }
  /// The token is gone for all who hold this object.
  void forget();

  /// Gets a new access token in place of `rejected`; at once when that has happened already.
  /// Callers at the same time share one request.
  void renew(const QString& rejected, Completion completion);

 private:
  void answered(const Result<HttpReply>& reply);
  MaybeError accept(const Result<HttpReply>& reply);

  Service service_;
  Token token_;
  bool forgotten_ = false;
  std::function<void(const Token&)> renewed_;
  std::function<void()> refused_;
  std::vector<Completion> waiting_;
};

/// The token in the answer to a code or a refresh token, or the refusal in words for the user.
Result<Token> grantedToken(const HttpReply& reply, const QDateTime& now);

}  // namespace dropbox
