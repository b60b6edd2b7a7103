#pragma once

#include <QIODevice>
#include <QNetworkRequest>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/dropbox/HttpReply.h"
#include "platform/dropbox/RetryPolicy.h"

namespace dropbox {

class Transport;

/// A request that can be sent more than once.
struct PostRequest {
  QNetworkRequest request;
  /// A fresh device for each sending (an empty pointer: a request without a body), or why there is
  /// none.
  std::function<Result<std::unique_ptr<QIODevice>>()> openBody;
  /// What error texts call it.
  QString subject;
};

/// A form (application/x-www-form-urlencoded) as the token endpoint takes it.
PostRequest formPost(const QUrl& url, const QList<std::pair<QString, QString>>& fields);

/// Sends until there is an answer that another sending would not change, as `policy` allows. The
/// completion gets that answer, or the error after the last attempt. Main thread.
void postWithRetries(std::shared_ptr<Transport> transport, const RetryPolicy& policy,
                     PostRequest request, std::function<void(Result<HttpReply>)> completion);

}  // namespace dropbox
