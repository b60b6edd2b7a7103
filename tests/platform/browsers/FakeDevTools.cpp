#include "FakeDevTools.h"

#include <QJsonDocument>
#include <QWebSocket>

using namespace Qt::StringLiterals;

FakeDevTools::FakeDevTools() : server_(u"fake"_s, QWebSocketServer::NonSecureMode) {
  QObject::connect(&server_, &QWebSocketServer::newConnection, &server_, [this] {
    QWebSocket* socket = server_.nextPendingConnection();
    socket->setParent(&server_);  // it is the caller's otherwise
    ++connections_;
    sockets_ << socket;
    QObject::connect(socket, &QWebSocket::textMessageReceived, &server_,
                     [this, socket](const QString& text) { take(*socket, text); });
  });
  server_.listen(QHostAddress::LocalHost);
}

void FakeDevTools::addPage(const QString& target, const QString& address, Sight sight) {
  targets_ << QJsonObject{
      {u"targetId"_s, target}, {u"type"_s, u"page"_s}, {u"url"_s, address}, {u"title"_s, u""_s}};
  sights_.insert(target, sight);
}

void FakeDevTools::addTab(const QString& address, bool isActive) {
  targets_ << QJsonObject{{u"targetId"_s, u"tab of "_s + address},
                          {u"type"_s, u"tab"_s},
                          {u"url"_s, address},
                          {u"title"_s, u""_s},
                          {u"embedderData"_s, QJsonObject{{u"tabActive"_s, isActive}}}};
}

void FakeDevTools::disconnectAll() {
  for (QWebSocket* socket : std::exchange(sockets_, {}))
    socket->abort();
}

void FakeDevTools::take(QWebSocket& socket, const QString& text) {
  const QJsonObject command = QJsonDocument::fromJson(text.toUtf8()).object();
  const QJsonObject parameters = command.value(u"params"_s).toObject();
  const QString method = command.value(u"method"_s).toString();
  const QString session = command.value(u"sessionId"_s).toString();
  QJsonObject result;
  if (method == u"Target.getTargets") result.insert(u"targetInfos"_s, targets_);
  if (method == u"Target.attachToTarget") {
    const QString target = parameters.value(u"targetId"_s).toString();
    if (!visited_.contains(target)) visited_ << target;
    result.insert(u"sessionId"_s, target);
  }
  if (hanging_.contains(session)) return;
  if (method == u"Runtime.evaluate")
    result.insert(u"result"_s, evaluated(session, parameters.value(u"expression"_s).toString()));
  // An event and a stranger's reply come in between, as they do.
  socket.sendTextMessage(u"{\"method\":\"Target.attachedToTarget\",\"params\":{}}"_s);
  socket.sendTextMessage(u"{\"id\":999999,\"result\":{}}"_s);
  socket.sendTextMessage(QString::fromUtf8(
      QJsonDocument(QJsonObject{{u"id"_s, command.value(u"id"_s)}, {u"result"_s, result}})
          .toJson(QJsonDocument::Compact)));
}

QJsonObject FakeDevTools::evaluated(const QString& target, const QString& program) const {
  if (program.contains(u"hasFocus"_s)) return {{u"value"_s, sights_.value(target)}};
  if (program.contains(u"outerHTML"_s) && !program.contains(u"iframe"_s))
    return {{u"value"_s, u"<p>"_s + target}};
  return {{u"value"_s, program.contains(u"iframe::"_s) ? u"frames"_s : u"styles"_s}};
}
