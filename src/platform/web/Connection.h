#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/web/FileDescriptor.h"
#include "platform/web/Message.h"

namespace web {

class PendingCalls;
class Session;
class Transport;

/// The conversation with one browser: numbers commands, matches replies, routes events to the
/// sessions. Main thread only; messages are read and parsed on the transport's thread.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  static std::shared_ptr<Connection> create(FileDescriptor readEnd, FileDescriptor writeEnd);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void send(Command command);
  /// Events of the session go to it until it is removed or gone.
  void addSession(const QString& identifier, std::weak_ptr<Session> session);
  void removeSession(const QString& identifier);
  /// Ends the session's commands under way with `reason`.
  void failSession(const QString& identifier, const Error& reason);
  /// Events that nobody has asked for are dropped unread.
  void wantEvent(const QString& method);

  /// Called once, when the browser has ended the connection; not after `close`.
  void setEndedHandler(std::function<void(const Error&)> handler) {
    endedHandler_ = std::move(handler);
  }
  /// Ends all commands and sessions with `reason`, those to come as well.
  void close(const Error& reason);

 private:
  struct EventFilter {
    std::mutex mutex;
    QSet<QString> methods;
  };

  Connection();
  void start(FileDescriptor readEnd, FileDescriptor writeEnd);
  void deliver(Message message);
  void handleEnd(const Error& reason);
  void timeOut(qint64 identifier, std::chrono::milliseconds limit);

  std::shared_ptr<PendingCalls> calls_;
  std::shared_ptr<EventFilter> filter_;
  QHash<QString, std::weak_ptr<Session>> sessions_;
  std::function<void(const Error&)> endedHandler_;
  MaybeError closedReason_;
  std::unique_ptr<Transport> transport_;
};

}  // namespace web
