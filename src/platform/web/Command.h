#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <chrono>
#include <functional>

#include "platform/base/Error.h"

namespace web {

/// A reply with one large base64 field: that field decoded, and the other fields as they are.
struct DataReply {
  QByteArray data;
  QJsonObject rest;
};

/// How the reply to a command is handed over: as JSON, or with one base64 field decoded.
struct ReplyForm {
  /// Empty: the whole reply is JSON.
  QByteArray dataField;
  /// Called on the main queue when a large reply begins to come in: the browser is free for the
  /// next command. Not called for replies that come at once.
  std::function<void()> begins;
};

/// One command for the browser.
struct Command {
  /// Empty: the browser itself.
  QString session;
  QString method;
  QJsonObject parameters;
  ReplyForm form;
  std::function<void(Result<DataReply>)> callback;
  std::chrono::milliseconds timeout{};
};

}  // namespace web
