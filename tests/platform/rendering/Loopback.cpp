#include "Loopback.h"

#include <QTcpSocket>
#include <QTimer>

using namespace Qt::StringLiterals;

Loopback::Loopback() {
  server_.listen(QHostAddress::LocalHost);
  QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
      QObject::connect(socket, &QTcpSocket::readyRead, &server_, [this, socket] {
        if (socket->peek(65536).contains("\r\n\r\n")) serve(socket);
      });
    }
  });
}

QUrl Loopback::url(const QString& path, const QString& host) const {
  return QUrl(u"http://%1:%2%3"_s.arg(host).arg(server_.serverPort()).arg(path));
}

void Loopback::serve(QTcpSocket* socket) {
  const QByteArray path = socket->readAll().split(' ').value(1);
  const Answer answer = answers_.value(path, {"text/plain", ""});
  if (answer.never) return;
  QTimer::singleShot(answer.delay, socket, [this, socket, path, answer] {
    ++answered_[path];
    socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nAccess-Control-Allow-Origin: *\r\n");
    socket->write("Content-Type: " + answer.type + "\r\nContent-Length: " +
                  QByteArray::number(answer.body.size()) + "\r\n\r\n" + answer.body);
    socket->disconnectFromHost();
  });
}
