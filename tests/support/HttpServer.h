#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QTcpServer>
#include <QUrl>
#include <chrono>

/// A web server on loopback for the tests: fixed answers by path, on the main queue.
class HttpServer {
 public:
  struct Answer {
    QByteArray body = {};
    QByteArray contentType = "text/html; charset=utf-8";
    QByteArray status = "200 OK";
    /// Whole lines, each ended by CR LF.
    QByteArray headers = {};
    enum class Kind { Complete, Never, Broken } kind = Kind::Complete;
    std::chrono::milliseconds delay{0};
  };

  HttpServer();

  void set(const QString& path, Answer answer) { answers_.insert(path, std::move(answer)); }
  void setPage(const QString& path, const QByteArray& body) { set(path, {body}); }
  /// The path answers with status 200 to requests that carry this Authorization header.
  void setAuthorized(const QString& path, const QByteArray& header) {
    authorized_.insert(path, "Authorization: " + header);
  }
  void redirect(const QString& from, const QString& to);
  QUrl url(const QString& path, const QString& host = QStringLiteral("127.0.0.1")) const;
  /// Paths in the order of the requests, without the browser's own request for an icon.
  const QStringList& requests() const { return requests_; }
  /// The head of the last request for a path.
  QByteArray head(const QString& path) const { return heads_.value(path); }

 private:
  void accept();
  void answer(QTcpSocket& socket);
  static void write(QTcpSocket& socket, const Answer& answer);

  QTcpServer server_;
  QHash<QString, Answer> answers_;
  QHash<QString, QByteArray> authorized_;
  QStringList requests_;
  QHash<QString, QByteArray> heads_;
};
