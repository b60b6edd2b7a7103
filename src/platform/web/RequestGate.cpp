#include "platform/web/RequestGate.h"

#include <QJsonArray>

#include "platform/web/MarkupSource.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

/// A message to the browser ends the connection at about 100 MB, and base64 adds a third.
constexpr qsizetype messageMarkupLimit = 48 << 20;

bool canServeAt(const QUrl& url) {
  if (!url.isValid()) return false;
  if (url.isLocalFile()) return true;
  return (url.scheme() == u"http" || url.scheme() == u"https") && !url.host().isEmpty();
}

QJsonArray documentHeaders() {
  return {QJsonObject{{u"name"_s, u"Content-Type"_s}, {u"value"_s, u"text/html; charset=utf-8"_s}}};
}

}  // namespace

RequestGate::RequestGate(Session& session) : session_(session) {
  subscriptions_.push_back(session.addEventHandler(
      u"Fetch.requestPaused"_s, [this](const QJsonObject& event) { decide(event); }));
  subscriptions_.push_back(session.addEventHandler(
      u"Fetch.authRequired"_s, [this](const QJsonObject& event) { askCredentials(event); }));
}

RequestGate::~RequestGate() = default;

QUrl RequestGate::prepare(const PageRequest& request) {
  localFiles_ = request.localFiles;
  source_.reset();
  markup_.reset();
  if (request.markup) markup_ = request.markup->toUtf8();
  main_ = request.markup ? Main::Serve : Main::Free;
  applyRules();
  if (!request.markup || canServeAt(request.url)) return request.url;
  // A name that never exists (RFC 2606, section 2): nothing is asked of the network even by a
  // fault.
  return QUrl(u"http://document.invalid/"_s);
}

void RequestGate::hold() {
  main_ = Main::Held;
  applyRules();
}

void RequestGate::setCredentialsHandler(CredentialsHandler handler) {
  credentialsHandler_ = std::move(handler);
  applyRules();
}

void RequestGate::applyRules() {
  QJsonArray patterns;
  if (main_ != Main::Free)
    patterns.append(QJsonObject{{u"urlPattern"_s, u"*"_s}, {u"resourceType"_s, u"Document"_s}});
  if (localFiles_ == LocalFiles::Refused)
    patterns.append(QJsonObject{{u"urlPattern"_s, u"file:*"_s}});
  const bool asks = credentialsHandler_ != nullptr;
  // Only requests that were stopped once ask for credentials.
  if (asks) patterns = {QJsonObject{{u"urlPattern"_s, u"*"_s}}};
  if (patterns.isEmpty() && !enabled_) return;
  enabled_ = !patterns.isEmpty();
  if (enabled_)
    session_.send(u"Fetch.enable"_s, {{u"patterns"_s, patterns}, {u"handleAuthRequests"_s, asks}});
  else
    session_.send(u"Fetch.disable"_s, {});
}

void RequestGate::askCredentials(const QJsonObject& event) {
  const QString identifier = event[u"requestId"].toString();
  const QJsonObject challenge = event[u"authChallenge"].toObject();
  const auto answer = [this, weak = std::weak_ptr(lifetime_),
                       identifier](const std::optional<Credentials>& given) {
    if (weak.expired()) return;
    QJsonObject response{{u"response"_s, given ? u"ProvideCredentials"_s : u"CancelAuth"_s}};
    if (given) {
      response[u"username"] = given->name;
      response[u"password"] = given->password;
    }
    session_.send(u"Fetch.continueWithAuth"_s,
                  {{u"requestId"_s, identifier}, {u"authChallengeResponse"_s, response}});
  };
  if (!credentialsHandler_) return answer(std::nullopt);
  const bool proxy = challenge[u"source"].toString() == u"Proxy";
  credentialsHandler_({proxy ? CredentialsRequest::Asker::Proxy : CredentialsRequest::Asker::Server,
                       QUrl(challenge[u"origin"].toString()), challenge[u"realm"].toString()},
                      answer);
}

bool RequestGate::isMainDocument(const QJsonObject& event) const {
  return event[u"resourceType"].toString() == u"Document" &&
         event[u"frameId"].toString() == mainFrame_;
}

void RequestGate::decide(const QJsonObject& event) {
  const QString request = event[u"requestId"].toString();
  const QUrl url(event[u"request"][u"url"].toString());
  if (isMainDocument(event)) {
    if (main_ == Main::Serve) return serve(request, url);
    if (main_ == Main::Held) return refuse(request, u"Aborted"_s);
  }
  if (url.isLocalFile() && localFiles_ == LocalFiles::Refused)
    return refuse(request, u"AccessDenied"_s);
  proceed(request);
}

void RequestGate::serve(const QString& request, const QUrl& url) {
  // A refresh or a link in the document finds the page held.
  main_ = Main::Held;
  const QByteArray markup = *std::exchange(markup_, std::nullopt);
  if (markup.size() > messageMarkupLimit) {
    source_ = MarkupSource::create(markup, url);
    if (!source_) return refuse(request, u"Failed"_s);
    session_.send(
        u"Fetch.continueRequest"_s,
        {{u"requestId"_s, request}, {u"url"_s, source_->url().toString(QUrl::FullyEncoded)}});
    return;
  }
  session_.send(u"Fetch.fulfillRequest"_s, {{u"requestId"_s, request},
                                            {u"responseCode"_s, 200},
                                            {u"responseHeaders"_s, documentHeaders()},
                                            {u"body"_s, QString::fromLatin1(markup.toBase64())}});
}

void RequestGate::proceed(const QString& request) {
  session_.send(u"Fetch.continueRequest"_s, {{u"requestId"_s, request}});
}

void RequestGate::refuse(const QString& request, const QString& reason) {
  session_.send(u"Fetch.failRequest"_s, {{u"requestId"_s, request}, {u"errorReason"_s, reason}});
}

}  // namespace web
