#pragma once

#include <QJsonObject>
#include <QMap>
#include <QSet>
#include <QStringList>
#include <QUrl>
#include <deque>

#include "HttpServer.h"

/// The service, as far as this program speaks to it: strict about every header, argument and body,
/// with the error forms that its documentation gives. Whatever a request does wrong is a line in
/// `faults`.
class StandIn {
 public:
  static constexpr const char* kAppKey = "k3r8tq0vz5mha2x";

  StandIn();

  HttpServer& http() { return http_; }
  const QStringList& faults() const { return faults_; }
  /// The routes in the order in which they were asked.
  QStringList routes;

  /// The user's browser: checks the address and gives the redirect that follows the user's consent.
  QUrl consent(const QUrl& authorization);
  static QUrl redirect(const QString& query);
  static QString stateOf(const QUrl& authorization);

  /// Answers the next request of a route in this way and not by its own rules; asked once for each
  /// call.
  void answerNext(const QString& route, const HttpServer::Response& response);
  /// As before, but the route does its work first: its answer is lost.
  void loseNextAnswer(const QString& route);
  void clearAnswers() { overrides_.clear(); }
  /// Called with the route of each request before it is answered.
  std::function<void(const QString&)> onRequest;
  void expireAccessTokens() { accessTokens_.clear(); }
  void refuseRefreshTokens() { refreshTokens_.clear(); }

  QMap<QString, QByteArray> files;
  /// The account's token answer carries these.
  int lifeTime = 14400;
  bool isTeam = false;
  QSet<QString> revoked;
  QByteArray expectedMember;

 private:
  using Response = HttpServer::Response;
  using Request = HttpServer::Request;
  struct Override {
    QString route;
    Response response;
    bool worksFirst;
  };

  Response handle(const Request& request);
  Response work(const QString& route, const Request& request);
  Response token(const Request& request);
  Response grant(bool isRenewal);
  Response content(const QString& route, const Request& request);
  Response append(const QJsonObject& cursor, const QByteArray& body, const QString& prefix);
  Response commit(const QJsonObject& argument, const QByteArray& contents, const QString& reason);
  void checkHeaders(const Request& request);
  bool expect(bool condition, const QString& fault);

  QStringList faults_;
  std::deque<Override> overrides_;
  QMap<QString, QString> challenges_;
  QSet<QString> accessTokens_;
  QSet<QString> refreshTokens_;
  QMap<QString, QByteArray> sessions_;
  int count_ = 0;
  HttpServer http_;
};

HttpServer::Response jsonResponse(int status, const QByteArray& json);
