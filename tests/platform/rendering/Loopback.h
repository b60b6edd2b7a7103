#pragma once

#include <QByteArray>
#include <QHash>
#include <QTcpServer>
#include <QUrl>
#include <chrono>

/// A web server on loopback whose answers can be late or never come.
class Loopback {
 public:
  struct Answer {
    QByteArray type;
    QByteArray body;
    std::chrono::milliseconds delay{0};
    bool never = false;
  };

  Loopback();

  void set(const QByteArray& path, Answer answer) { answers_.insert(path, std::move(answer)); }
  QUrl url(const QString& path, const QString& host = QStringLiteral("127.0.0.1")) const;
  int answered(const QByteArray& path) const { return answered_.value(path); }

 private:
  void serve(QTcpSocket* socket);

  QTcpServer server_;
  QHash<QByteArray, Answer> answers_;
  QHash<QByteArray, int> answered_;
};
