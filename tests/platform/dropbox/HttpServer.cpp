#include "HttpServer.h"

#include <QTcpSocket>
#include <QUrl>
#include <memory>

HttpServer::HttpServer(Handler handler) : handler_(std::move(handler)) {
  QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
      auto buffer = std::make_shared<QByteArray>();
      QObject::connect(socket, &QTcpSocket::readyRead, socket,
                       [this, socket, buffer] { read(socket, *buffer); });
      QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
  });
  server_.listen(QHostAddress::LocalHost);
}

QUrl HttpServer::address() const {
  return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(server_.serverPort()));
}

void HttpServer::read(QTcpSocket* socket, QByteArray& buffer) {
  buffer += socket->readAll();
  const qsizetype headEnd = buffer.indexOf("\r\n\r\n");
  if (headEnd < 0) return;
  QList<QByteArray> lines = buffer.left(headEnd).split('\n');
  const QList<QByteArray> requestLine = lines.takeFirst().trimmed().split(' ');
  Request request{requestLine.value(0), requestLine.value(1), {}, {}};
  for (const QByteArray& line : lines) {
    const qsizetype colon = line.indexOf(':');
    request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
  }
  const qint64 length = request.headers.value("content-length").toLongLong();
  const qint64 arrived = buffer.size() - headEnd - 4;
  if (cutBodyAfter_ >= 0 && arrived >= qMin(cutBodyAfter_, length)) {
    cutBodyAfter_ = -1;
    socket->abort();
    return;
  }
  if (arrived < length) return;
  request.body = buffer.mid(headEnd + 4, length);
  buffer.remove(0, headEnd + 4 + length);
  answer(socket, handler_(request));
}

void HttpServer::answer(QTcpSocket* socket, const Response& response) {
  if (response.isSilent) return;
  if (response.cut == Response::Cut::BeforeAnswer) return socket->abort();
  QByteArray text = "HTTP/1.1 " + QByteArray::number(response.status) +
                    " Status\r\nContent-Type: " + response.contentType +
                    "\r\nContent-Length: " + QByteArray::number(response.body.size()) + "\r\n";
  for (const QByteArray& header : response.headers)
    text += header + "\r\n";
  text += "\r\n" + response.body;
  const bool isCut = response.cut == Response::Cut::WithinAnswer;
  socket->write(isCut ? text.left(text.size() - response.body.size() / 2) : text);
  if (isCut) socket->disconnectFromHost();
}
