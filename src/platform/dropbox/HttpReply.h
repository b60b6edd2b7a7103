#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <chrono>
#include <optional>

namespace dropbox {

/// What came back from one request: an HTTP answer, or none with the reason.
struct HttpReply {
  /// 0: no whole answer arrived.
  int status = 0;
  QByteArray body;
  std::optional<std::chrono::seconds> retryAfter;
  QString networkError;

  bool isSuccess() const { return status >= 200 && status < 300; }
  /// Empty when the body is no JSON object.
  QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

}  // namespace dropbox
