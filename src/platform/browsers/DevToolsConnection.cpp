#include "platform/browsers/DevToolsConnection.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QPointer>
#include <QWebSocket>
#include <condition_variable>
#include <deque>
#include <optional>

#include "platform/browsers/BrowserError.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

/// A page's markup comes in one message.
constexpr quint64 longestMessage = 512ULL * 1024 * 1024;

using Clock = std::chrono::steady_clock;

}  // namespace

/// What the main queue and the waiting thread share.
struct DevToolsConnection::Channel {
  std::mutex mutex;
  std::condition_variable changed;
  bool opened = false;
  /// Empty while the conversation lasts.
  QString closedReason;
  bool callIsWaiting = false;
  std::deque<QString> messages;
  /// Main queue only.
  QPointer<QWebSocket> socket;

  void setOpened() {
    std::lock_guard lock(mutex);
    opened = true;
    changed.notify_all();
  }
  void setClosed(const QString& reason) {
    std::lock_guard lock(mutex);
    if (closedReason.isEmpty()) closedReason = reason.isEmpty() ? u"connection closed"_s : reason;
    changed.notify_all();
  }
  /// What nobody waits for is dropped: late replies, and the events of the session.
  void take(const QString& message) {
    std::lock_guard lock(mutex);
    if (callIsWaiting) messages.push_back(message);
    changed.notify_all();
  }
  /// None when the time is over or the conversation is.
  std::optional<QString> nextMessage(Clock::time_point deadline) {
    std::unique_lock lock(mutex);
    changed.wait_until(lock, deadline,
                       [&] { return !messages.empty() || !closedReason.isEmpty(); });
    if (messages.empty()) return std::nullopt;
    QString message = std::move(messages.front());
    messages.pop_front();
    return message;
  }
  void setWaiting(bool waits) {
    std::lock_guard lock(mutex);
    callIsWaiting = waits;
    messages.clear();
  }

  static void connectTo(const std::shared_ptr<Channel>& channel, const QUrl& address);
};

/// Main queue. Without an Origin header, which the browser would refuse; the socket's handlers hold
/// the channel, and the channel only knows of the socket.
void DevToolsConnection::Channel::connectTo(const std::shared_ptr<Channel>& channel,
                                            const QUrl& address) {
  auto* socket =
      new QWebSocket(QString(), QWebSocketProtocol::VersionLatest, QCoreApplication::instance());
  channel->socket = socket;
  socket->setProxy(QNetworkProxy::NoProxy);
  socket->setMaxAllowedIncomingMessageSize(longestMessage);
  socket->setMaxAllowedIncomingFrameSize(longestMessage);
  QObject::connect(socket, &QWebSocket::connected, socket, [channel] { channel->setOpened(); });
  // Every way to fail ends here; the error signal has another name in each version of Qt.
  QObject::connect(socket, &QWebSocket::stateChanged, socket,
                   [channel, socket](QAbstractSocket::SocketState state) {
                     if (state != QAbstractSocket::UnconnectedState) return;
                     channel->setClosed(socket->errorString());
                     socket->deleteLater();
                   });
  QObject::connect(socket, &QWebSocket::textMessageReceived, socket,
                   [channel](const QString& message) { channel->take(message); });
  socket->open(address);
}

Result<std::shared_ptr<DevToolsConnection>> DevToolsConnection::open(
    const DevToolsEndpoint& endpoint, std::chrono::milliseconds limit) {
  const auto channel = std::make_shared<Channel>();
  std::shared_ptr<DevToolsConnection> connection(new DevToolsConnection(endpoint, channel));
  dispatch::mainAsync(
      [channel, address = endpoint.address()] { Channel::connectTo(channel, address); });
  std::unique_lock lock(channel->mutex);
  channel->changed.wait_for(lock, limit,
                            [&] { return channel->opened || !channel->closedReason.isEmpty(); });
  if (channel->opened) return connection;
  if (!channel->closedReason.isEmpty()) return browserFailure(NoEndpoint, channel->closedReason);
  return browserFailure(NotAllowed, u"The browser has not let Corvalis in."_s);
}

DevToolsConnection::DevToolsConnection(const DevToolsEndpoint& endpoint,
                                       std::shared_ptr<Channel> channel)
    : endpoint_(endpoint), channel_(std::move(channel)) {}

DevToolsConnection::~DevToolsConnection() {
  dispatch::mainAsync([channel = channel_] {
    if (channel->socket) channel->socket->abort();
    delete channel->socket;
  });
}

bool DevToolsConnection::isOpen() const {
  std::lock_guard lock(channel_->mutex);
  return channel_->opened && channel_->closedReason.isEmpty();
}

Result<QJsonObject> DevToolsConnection::call(const QString& method, const QJsonObject& parameters,
                                             const QString& session,
                                             std::chrono::milliseconds limit) {
  std::lock_guard oneAtATime(callMutex_);
  const int identifier = ++lastIdentifier_;
  QJsonObject command{{u"id"_s, identifier}, {u"method"_s, method}, {u"params"_s, parameters}};
  if (!session.isEmpty()) command.insert(u"sessionId"_s, session);
  const QString text = QString::fromUtf8(QJsonDocument(command).toJson(QJsonDocument::Compact));
  channel_->setWaiting(true);
  dispatch::mainAsync([channel = channel_, text] {
    if (channel->socket) channel->socket->sendTextMessage(text);
  });
  const auto deadline = Clock::now() + limit;
  Result<QJsonObject> result =
      browserFailure(NoAnswer, u"The browser does not answer (%1)."_s.arg(method));
  while (const auto message = channel_->nextMessage(deadline)) {
    const QJsonObject reply = QJsonDocument::fromJson(message->toUtf8()).object();
    if (reply.value(u"id"_s).toInt() != identifier) continue;
    const QJsonObject error = reply.value(u"error"_s).toObject();
    result = error.isEmpty() ? Result<QJsonObject>(reply.value(u"result"_s).toObject())
                             : browserFailure(Refused, error.value(u"message"_s).toString());
    break;
  }
  channel_->setWaiting(false);
  return result;
}

}  // namespace browsers
