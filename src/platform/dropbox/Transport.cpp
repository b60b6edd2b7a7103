#include "platform/dropbox/Transport.h"

#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <algorithm>

#include "platform/dispatch/Dispatch.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

/// No answer of the routes used here comes near; a larger one is not the service's.
constexpr qint64 kLongestAnswer = 1024 * 1024;

std::optional<std::chrono::seconds> retryAfterOf(const QNetworkReply& reply) {
  bool isNumber = false;
  const int seconds = reply.rawHeader("Retry-After").trimmed().toInt(&isNumber);
  if (!isNumber || seconds < 0) return std::nullopt;
  return std::chrono::seconds(seconds);
}

}  // namespace

struct Transport::Pause {
  std::unique_ptr<dispatch::Timer> timer;
  std::function<void()> work;
};

Transport::Transport(std::chrono::milliseconds silence)
    : silence_(silence), manager_(std::make_unique<QNetworkAccessManager>()) {
  // A redirect would carry the token to an address of the peer's choosing.
  manager_->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

Transport::~Transport() {
  // The last client may be released by a worker thread, but the manager belongs to the main thread.
  if (!dispatch::isMainThread()) manager_.release()->deleteLater();
}

void Transport::post(QNetworkRequest request, std::unique_ptr<QIODevice> body,
                     Completion completion) {
  if (closed_) {
    HttpReply none;
    none.networkError = u"The program is ending."_s;
    dispatch::mainAsync([completion = std::move(completion), none] { completion(none); });
    return;
  }
  request.setTransferTimeout(static_cast<int>(silence_.count()));
  request.setHeader(QNetworkRequest::UserAgentHeader, u"Corvalis/" CORVALIS_VERSION ""_s);
  request.setHeader(QNetworkRequest::ContentLengthHeader, body ? body->size() : 0);
  // One request body at a time on its own connection: nothing to gain from multiplexing.
  request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
  // Qt's own post() would give an empty body the content type of a form.
  QNetworkReply* reply = body ? manager_->post(request, body.get())
                              : manager_->sendCustomRequest(request, "POST", QByteArray());
  if (body) body.release()->setParent(reply);
  running_.insert(reply);
  QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply] {
    if (reply->bytesAvailable() > kLongestAnswer) reply->abort();
  });
  QObject::connect(
      reply, &QNetworkReply::finished, reply,
      [this, reply, completion = std::move(completion)] { finished(reply, completion); });
}

void Transport::finished(QNetworkReply* reply, const Completion& completion) {
  running_.erase(reply);
  reply->deleteLater();
  // Answered after the signal has ended: the completion may release the last hold on this object.
  dispatch::mainAsync(
      [self = shared_from_this(), completion, answer = answerOf(*reply)] { completion(answer); });
}

HttpReply Transport::answerOf(QNetworkReply& reply) const {
  HttpReply answer;
  const QNetworkReply::NetworkError error = reply.error();
  // Codes below 100 concern the connection, those of HTTP statuses begin above 200.
  if (error == QNetworkReply::OperationCanceledError) {
    answer.networkError =
        closed_ ? u"The program is ending."_s : u"The service did not answer in time."_s;
  } else if (error != QNetworkReply::NoError &&
             error < QNetworkReply::ProxyAuthenticationRequiredError) {
    answer.networkError = reply.errorString();
  } else {
    answer.status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answer.body = reply.readAll();
    answer.retryAfter = retryAfterOf(reply);
    if (answer.status == 0) answer.networkError = reply.errorString();
  }
  return answer;
}

void Transport::pause(std::chrono::milliseconds duration, std::function<void()> work) {
  auto pause = std::make_shared<Pause>();
  pause->work = std::move(work);
  pauses_.push_back(pause);
  const auto delay = closed_ ? std::chrono::milliseconds(0) : duration;
  pause->timer = dispatch::Timer::after(delay, [this, raw = pause.get()] { endPause(raw); });
}

void Transport::endPause(Pause* pause) {
  const auto self = shared_from_this();
  const auto position = std::find_if(pauses_.begin(), pauses_.end(),
                                     [pause](const auto& held) { return held.get() == pause; });
  if (position == pauses_.end()) return;
  const auto held = *position;
  pauses_.erase(position);
  held->work();
}

void Transport::close() {
  if (closed_) return;
  closed_ = true;
  const std::set<QNetworkReply*> running = running_;
  for (QNetworkReply* reply : running)
    reply->abort();
  const std::vector<std::shared_ptr<Pause>> pauses = pauses_;
  for (const auto& pause : pauses)
    endPause(pause.get());
}

}  // namespace dropbox
