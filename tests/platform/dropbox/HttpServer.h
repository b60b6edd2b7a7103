#pragma once

#include <QMap>
#include <QTcpServer>
#include <functional>

/// An HTTP/1.1 server on 127.0.0.1, on the test's own event loop.
class HttpServer {
 public:
  struct Request {
    QByteArray method;
    QByteArray path;
    /// Names in lower case.
    QMap<QByteArray, QByteArray> headers;
    QByteArray body;
  };
  struct Response {
    int status = 200;
    QByteArray body;
    QByteArray contentType = "application/json";
    QList<QByteArray> headers;
    /// Closes the connection: instead of an answer, or in the middle of it.
    enum class Cut { None, BeforeAnswer, WithinAnswer } cut = Cut::None;
    /// Never answers, with the connection open.
    bool isSilent = false;
  };
  using Handler = std::function<Response(const Request&)>;

  explicit HttpServer(Handler handler);
  QUrl address() const;
  /// The next request is cut off after so many bytes of its body.
  void cutNextBodyAfter(qint64 bytes) { cutBodyAfter_ = bytes; }

 private:
  void read(QTcpSocket* socket, QByteArray& buffer);
  void answer(QTcpSocket* socket, const Response& response);

  QTcpServer server_;
  Handler handler_;
  qint64 cutBodyAfter_ = -1;
};
