#include "support/HttpServer.h"

#include <QTcpSocket>
#include <QTimer>

using namespace Qt::StringLiterals;

HttpServer::HttpServer() {
  QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
  server_.listen(QHostAddress::LocalHost);
}

void HttpServer::redirect(const QString& from, const QString& to) {
  set(from, {{}, "text/plain", "302 Found", "Location: " + to.toLatin1() + "\r\n"});
}

QUrl HttpServer::url(const QString& path, const QString& host) const {
  return QUrl(u"http://%1:%2%3"_s.arg(host, QString::number(server_.serverPort()), path));
}

void HttpServer::accept() {
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QTcpSocket::readyRead, &server_, [this, socket] { answer(*socket); });
  }
}

void HttpServer::answer(QTcpSocket& socket) {
  const QByteArray head = socket.peek(1 << 16);
  if (!head.contains("\r\n\r\n")) return;
  socket.readAll();
  const QString path = QString::fromLatin1(head.split(' ').value(1));
  if (path != u"/favicon.ico") requests_.append(path);
  heads_.insert(path, head);
  Answer answer = answers_.value(path, {"<p>Nothing is here.", "text/html", "404 Not Found"});
  if (answer.kind == Answer::Kind::Never) return;
  const QByteArray authorized = authorized_.value(path);
  if (!authorized.isEmpty() && head.contains(authorized)) answer.status = "200 OK";
  QTimer::singleShot(answer.delay, &socket, [&socket, answer] { write(socket, answer); });
}

void HttpServer::write(QTcpSocket& socket, const Answer& answer) {
  const qsizetype length = answer.body.size() + (answer.kind == Answer::Kind::Broken ? 1000 : 0);
  socket.write("HTTP/1.1 " + answer.status + "\r\nContent-Type: " + answer.contentType +
               "\r\nContent-Length: " + QByteArray::number(length) + "\r\nConnection: close\r\n" +
               answer.headers + "\r\n" + answer.body);
  socket.disconnectFromHost();
}
