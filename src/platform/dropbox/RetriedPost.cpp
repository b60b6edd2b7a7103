#include "platform/dropbox/RetriedPost.h"

#include <QBuffer>
#include <QUrl>

#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/DropboxError.h"
#include "platform/dropbox/RouteError.h"
#include "platform/dropbox/Transport.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

/// The service reports its lock contention either way, depending on the route.
bool isTransient(const HttpReply& reply) {
  if (reply.status == 409) return errorTags(reply).contains(u"too_many_write_operations"_s);
  return reply.status == 0 || reply.status == 429 || reply.status >= 500;
}

class RetriedPost : public std::enable_shared_from_this<RetriedPost> {
 public:
  using Completion = std::function<void(Result<HttpReply>)>;

  RetriedPost(std::shared_ptr<Transport> transport, const RetryPolicy& policy, PostRequest request,
              Completion completion)
      : transport_(std::move(transport)),
        policy_(policy),
        request_(std::move(request)),
        completion_(std::move(completion)) {}

  void send() {
    auto body = request_.openBody();
    if (!body) {
      dispatch::mainAsync([self = shared_from_this(), error = body.error()] {
        self->completion_(tl::unexpected(error));
      });
      return;
    }
    ++attempt_;
    transport_->post(
        request_.request, std::move(*body),
        [self = shared_from_this()](const HttpReply& reply) { self->answered(reply); });
  }

 private:
  void answered(const HttpReply& reply) {
    if (!isTransient(reply)) return completion_(reply);
    const auto pause = pauseBefore(reply);
    const bool mayRetry =
        attempt_ < policy_.attempts && pause <= policy_.longestPause && !transport_->isClosed();
    if (!mayRetry) return completion_(tl::unexpected(finalError(reply)));
    logLine(u"Dropbox: %1; sending again in %2 ms"_s
                .arg(routeError(reply, request_.subject).localizedDescription)
                .arg(pause.count()));
    transport_->pause(pause, [self = shared_from_this()] { self->send(); });
  }

  std::chrono::milliseconds pauseBefore(const HttpReply& reply) const {
    if (const auto requested = requestedPause(reply)) return *requested;
    const auto doubled = policy_.firstPause * (1LL << qMin(attempt_ - 1, 20));
    return qMin<std::chrono::milliseconds>(doubled, policy_.longestPause);
  }

  Error finalError(const HttpReply& reply) const {
    if (transport_->isClosed()) return makeError(ErrorUnavailable, reply.networkError);
    return routeError(reply, request_.subject);
  }

  std::shared_ptr<Transport> transport_;
  RetryPolicy policy_;
  PostRequest request_;
  Completion completion_;
  int attempt_ = 0;
};

}  // namespace

PostRequest formPost(const QUrl& url, const QList<std::pair<QString, QString>>& fields) {
  QByteArray form;
  for (const auto& [name, value] : fields) {
    if (!form.isEmpty()) form.append('&');
    form.append(QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value));
  }
  PostRequest post;
  post.request = QNetworkRequest(url);
  post.request.setHeader(QNetworkRequest::ContentTypeHeader,
                         u"application/x-www-form-urlencoded"_s);
  post.openBody = [form]() -> Result<std::unique_ptr<QIODevice>> {
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(form);
    buffer->open(QIODevice::ReadOnly);
    return buffer;
  };
  return post;
}

void postWithRetries(std::shared_ptr<Transport> transport, const RetryPolicy& policy,
                     PostRequest request, std::function<void(Result<HttpReply>)> completion) {
  std::make_shared<RetriedPost>(std::move(transport), policy, std::move(request),
                                std::move(completion))
      ->send();
}

}  // namespace dropbox
