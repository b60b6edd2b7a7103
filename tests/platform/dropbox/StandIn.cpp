#include "StandIn.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

HttpServer::Response jsonResponse(int status, const QByteArray& json) {
  return {.status = status, .body = json, .headers = {}};
}

namespace {

const QString kRedirectAddress = u"db-%1://2/token"_s.arg(QLatin1StringView(StandIn::kAppKey));

QMap<QString, QString> fieldsOf(const QByteArray& query) {
  QMap<QString, QString> fields;
  for (const QByteArray& pair : query.split('&'))
    fields.insert(QString::fromUtf8(QByteArray::fromPercentEncoding(pair.split('=').value(0))),
                  QString::fromUtf8(QByteArray::fromPercentEncoding(pair.split('=').value(1))));
  return fields;
}

QString sha256(const QString& verifier) {
  const auto hash = QCryptographicHash::hash(verifier.toLatin1(), QCryptographicHash::Sha256);
  return QString::fromLatin1(
      hash.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

bool isVerifier(const QString& text) {
  static const QRegularExpression unreserved(u"^[A-Za-z0-9._~-]{43,128}$"_s);
  return unreserved.match(text).hasMatch();
}

}  // namespace

StandIn::StandIn() : http_([this](const Request& request) { return handle(request); }) {}

bool StandIn::expect(bool condition, const QString& fault) {
  if (!condition) faults_.append(fault);
  return condition;
}

QUrl StandIn::consent(const QUrl& authorization) {
  const auto fields = fieldsOf(authorization.query(QUrl::FullyEncoded).toUtf8());
  const QMap<QString, QString> fixed{
      {u"client_id"_s, QString::fromLatin1(kAppKey)}, {u"response_type"_s, u"code"_s},
      {u"code_challenge_method"_s, u"S256"_s},        {u"token_access_type"_s, u"offline"_s},
      {u"scope"_s, u"files.content.write"_s},         {u"redirect_uri"_s, kRedirectAddress}};
  for (const auto& [name, value] : fixed.asKeyValueRange())
    expect(fields.value(name) == value, u"authorization: %1=%2"_s.arg(name, fields.value(name)));
  expect(fields.value(u"code_challenge"_s).size() == 43, u"authorization: challenge"_s);
  expect(fields.value(u"state"_s).size() >= 22, u"authorization: state"_s);
  const QString code = u"code+%1/="_s.arg(++count_);
  challenges_.insert(code, fields.value(u"code_challenge"_s));
  return redirect(u"code=%1&state=%2"_s.arg(QString::fromLatin1(QUrl::toPercentEncoding(code)),
                                            fields.value(u"state"_s)));
}

QUrl StandIn::redirect(const QString& query) {
  return QUrl(kRedirectAddress + u'?' + query);
}

QString StandIn::stateOf(const QUrl& authorization) {
  return QUrlQuery(authorization).queryItemValue(u"state"_s);
}

void StandIn::answerNext(const QString& route, const Response& response) {
  overrides_.push_back({route, response, false});
}

void StandIn::loseNextAnswer(const QString& route) {
  Response lost;
  lost.cut = Response::Cut::WithinAnswer;
  overrides_.push_back({route, lost, true});
}

StandIn::Response StandIn::handle(const Request& request) {
  const QString route = QString::fromUtf8(request.path).remove(u"/2/files/"_s);
  routes.append(route);
  if (onRequest) onRequest(route);
  expect(request.method == "POST", u"method"_s);
  checkHeaders(request);
  if (overrides_.empty() || overrides_.front().route != route) return work(route, request);
  const Override next = overrides_.front();
  overrides_.pop_front();
  if (!next.worksFirst) return next.response;
  Response answer = work(route, request);
  answer.cut = next.response.cut;
  return answer;
}

/// Nothing but what the routes know may be sent, and all of it in ASCII.
void StandIn::checkHeaders(const Request& request) {
  static const QSet<QByteArray> known{"host",
                                      "user-agent",
                                      "content-length",
                                      "content-type",
                                      "authorization",
                                      "dropbox-api-arg",
                                      "dropbox-api-select-user",
                                      "connection",
                                      "accept-encoding",
                                      "accept-language"};
  for (const auto& [name, value] : request.headers.asKeyValueRange()) {
    expect(known.contains(name), u"header "_s + QString::fromLatin1(name));
    for (const char character : value)
      expect(character >= 0x20 && character < 0x7f,
             u"header %1 is not ASCII"_s.arg(QString::fromLatin1(name)));
  }
  expect(request.headers.contains("content-length"), u"no length"_s);
  expect(request.headers.value("user-agent").startsWith("Corvalis/"), u"user agent"_s);
}

StandIn::Response StandIn::work(const QString& route, const Request& request) {
  if (route == u"/oauth2/token") return token(request);
  const QByteArray authorization = request.headers.value("authorization");
  expect(authorization.startsWith("Bearer "), u"authorization"_s);
  const QString access = QString::fromUtf8(authorization.mid(7));
  if (!accessTokens_.contains(access))
    return jsonResponse(
        401,
        R"({"error_summary":"expired_access_token/..","error":{".tag":"expired_access_token"}})");
  if (route == u"/2/auth/token/revoke") {
    expect(request.body.isEmpty() && !request.headers.contains("content-type"),
           u"revoke takes nothing"_s);
    accessTokens_.remove(access);
    revoked.insert(access);
    return jsonResponse(200, "null");
  }
  return content(route, request);
}

StandIn::Response StandIn::token(const Request& request) {
  expect(request.headers.value("content-type") == "application/x-www-form-urlencoded",
         u"form type"_s);
  expect(!request.headers.contains("authorization"), u"token request with a token"_s);
  auto fields = fieldsOf(request.body);
  expect(fields.take(u"client_id"_s) == QLatin1StringView(kAppKey), u"client_id"_s);
  const QString type = fields.take(u"grant_type"_s);
  if (type == u"refresh_token") {
    const bool isKnown = refreshTokens_.contains(fields.take(u"refresh_token"_s));
    expect(fields.isEmpty(), u"more fields"_s);
    if (isKnown) return grant(true);
  } else if (expect(type == u"authorization_code", u"grant type "_s + type)) {
    const QString verifier = fields.take(u"code_verifier"_s);
    expect(isVerifier(verifier), u"verifier"_s);
    expect(fields.take(u"redirect_uri"_s) == kRedirectAddress, u"redirect_uri"_s);
    const QString challenge = challenges_.take(fields.take(u"code"_s));
    expect(fields.isEmpty(), u"more fields"_s);
    if (!challenge.isEmpty() && sha256(verifier) == challenge) return grant(false);
  }
  return jsonResponse(400, R"({"error":"invalid_grant","error_description":"refused"})");
}

StandIn::Response StandIn::grant(bool isRenewal) {
  const QString access = u"access-%1"_s.arg(++count_);
  accessTokens_.insert(access);
  QJsonObject json{
      {u"access_token"_s, access}, {u"token_type"_s, u"bearer"_s}, {u"expires_in"_s, lifeTime}};
  if (!isRenewal) {
    refreshTokens_.insert(u"refresh-"_s + access);
    json.insert(u"refresh_token"_s, u"refresh-"_s + access);
    json.insert(isTeam ? u"team_id"_s : u"account_id"_s, u"dbid:1"_s);
  }
  return jsonResponse(200, QJsonDocument(json).toJson());
}

StandIn::Response StandIn::content(const QString& route, const Request& request) {
  expect(request.headers.value("content-type") == "application/octet-stream", u"content type"_s);
  expect(request.headers.value("dropbox-api-select-user") == expectedMember, u"team member"_s);
  const QJsonObject argument =
      QJsonDocument::fromJson(request.headers.value("dropbox-api-arg")).object();
  if (route == u"upload") return commit(argument, request.body, u"reason"_s);
  if (route == u"upload_session/start") {
    expect(argument == QJsonObject{{u"close"_s, false}}, u"start argument"_s);
    const QString id = u"session-%1"_s.arg(++count_);
    sessions_.insert(id, request.body);
    return jsonResponse(200, "{\"session_id\":\"" + id.toUtf8() + "\"}");
  }
  const bool isFinish = route == u"upload_session/finish";
  if (!expect(isFinish || route == u"upload_session/append_v2", u"route "_s + route))
    return jsonResponse(404, "");
  const QJsonObject cursor = argument.value(u"cursor"_s).toObject();
  expect(argument.size() == 2 && cursor.size() == 2, u"cursor"_s);
  const Response appended = append(cursor, request.body, isFinish ? u"lookup_failed"_s : QString());
  if (!isFinish || appended.status != 200) return appended;
  return commit(argument.value(u"commit"_s).toObject(),
                sessions_.take(cursor.value(u"session_id"_s).toString()), u"path"_s);
}

/// Refusals of a session stand within "lookup_failed" when they come from the joining route.
StandIn::Response StandIn::append(const QJsonObject& cursor, const QByteArray& body,
                                  const QString& prefix) {
  const QString id = cursor.value(u"session_id"_s).toString();
  QJsonObject error;
  if (!sessions_.contains(id))
    error = {{u".tag"_s, u"not_found"_s}};
  else if (cursor.value(u"offset"_s).toInteger() != sessions_.value(id).size())
    error = {{u".tag"_s, u"incorrect_offset"_s}, {u"correct_offset"_s, sessions_.value(id).size()}};
  if (error.isEmpty()) {
    sessions_[id] += body;
    return jsonResponse(200, "null");
  }
  if (!prefix.isEmpty()) error = {{u".tag"_s, prefix}, {prefix, error}};
  return jsonResponse(
      409,
      QJsonDocument(QJsonObject{{u"error_summary"_s, u"x/.."_s}, {u"error"_s, error}}).toJson());
}

StandIn::Response StandIn::commit(const QJsonObject& argument, const QByteArray& contents,
                                  const QString& reason) {
  const QString path = argument.value(u"path"_s).toString();
  const QJsonObject expected{{u"path"_s, path},
                             {u"mode"_s, u"add"_s},
                             {u"autorename"_s, false},
                             {u"mute"_s, false},
                             {u"strict_conflict"_s, false}};
  expect(argument == expected && path.startsWith(u'/'), u"commit argument"_s);
  if (files.contains(path) && files.value(path) != contents) {
    const QJsonObject conflict{{u".tag"_s, u"conflict"_s},
                               {u"conflict"_s, QJsonObject{{u".tag"_s, u"file"_s}}}};
    const QJsonObject error{{u".tag"_s, u"path"_s}, {reason, conflict}};
    return jsonResponse(
        409, QJsonDocument(
                 QJsonObject{{u"error_summary"_s, u"path/conflict/file/."_s}, {u"error"_s, error}})
                 .toJson());
  }
  files.insert(path, contents);
  const QJsonObject stored{{u"id"_s, u"id:1"_s},
                           {u"name"_s, path.section(u'/', -1)},
                           {u"path_display"_s, path},
                           {u"rev"_s, u"a1"_s},
                           {u"size"_s, contents.size()}};
  return jsonResponse(200, QJsonDocument(stored).toJson());
}
