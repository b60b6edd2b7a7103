#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "platform/web/Command.h"

namespace web {

class Connection;

using ReplyCallback = std::function<void(Result<QJsonObject>)>;
using DataCallback = std::function<void(Result<DataReply>)>;
using EventHandler = std::function<void(const QJsonObject& parameters)>;
/// An event handler lasts as long as its subscription is held.
using Subscription = std::shared_ptr<const EventHandler>;

inline constexpr std::chrono::seconds defaultCommandTimeout{60};

/// The conversation with one target of the browser. Main thread only; all callbacks come later, on
/// the main queue. Each command ends exactly once: with its reply, the browser's refusal, its
/// time-out or the end of the session; the error names the method.
class Session : public std::enable_shared_from_this<Session> {
 public:
  Session() = default;
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Commands that are sent before the session is attached wait for it, in order.
  void send(const QString& method, const QJsonObject& parameters, ReplyCallback callback = {},
            std::chrono::milliseconds timeout = defaultCommandTimeout);
  /// For replies of many megabytes: the string field that `form` names is decoded off the main
  /// thread and no JSON value is made of it. The reply's "base64Encoded": false means plain text.
  void sendForData(const QString& method, const QJsonObject& parameters, ReplyForm form,
                   DataCallback callback,
                   std::chrono::milliseconds timeout = defaultCommandTimeout);
  [[nodiscard]] Subscription addEventHandler(const QString& method, EventHandler handler);

  /// Called once, by whoever asked the browser for the session. An empty identifier is the
  /// browser's own session.
  void attach(std::shared_ptr<Connection> connection, const QString& identifier);
  /// Ends all commands with `reason`, those to come as well. No event is delivered afterwards.
  void close(const Error& reason);
  /// Ends the commands under way with `reason`; the session goes on.
  void failCommands(const Error& reason);
  bool isClosed() const { return closedReason_.has_value(); }
  /// Only of a closed session.
  const Error& closedReason() const { return *closedReason_; }
  const QString& identifier() const { return identifier_; }
  const std::shared_ptr<Connection>& connection() const { return connection_; }

  /// Called by the connection.
  void deliverEvent(const QString& method, const QJsonObject& parameters);

 private:
  void sendCommand(Command command);
  static void fail(const Command& command, const Error& reason);

  std::shared_ptr<Connection> connection_;
  QString identifier_;
  MaybeError closedReason_;
  std::vector<Command> waiting_;
  QHash<QString, std::vector<std::weak_ptr<const EventHandler>>> handlers_;
};

}  // namespace web
