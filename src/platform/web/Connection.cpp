#include "platform/web/Connection.h"

#include <QJsonDocument>

#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/web/PendingCalls.h"
#include "platform/web/Session.h"
#include "platform/web/Transport.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

QByteArray encode(qint64 identifier, const Command& command) {
  QJsonObject message{
      {u"id"_s, identifier}, {u"method"_s, command.method}, {u"params"_s, command.parameters}};
  if (!command.session.isEmpty()) message.insert(u"sessionId"_s, command.session);
  return QJsonDocument(message).toJson(QJsonDocument::Compact);
}

/// Fails calls later: their callbacks never run within the call that ended them.
void failLater(std::vector<PendingCall> calls, const Error& reason) {
  if (calls.empty()) return;
  auto shared = std::make_shared<std::vector<PendingCall>>(std::move(calls));
  dispatch::mainAsync([shared, reason] {
    for (PendingCall& call : *shared)
      call.fail(reason);
  });
}

}  // namespace

std::shared_ptr<Connection> Connection::create(FileDescriptor readEnd, FileDescriptor writeEnd) {
  std::shared_ptr<Connection> connection(new Connection);
  connection->start(std::move(readEnd), std::move(writeEnd));
  return connection;
}

Connection::Connection()
    : calls_(std::make_shared<PendingCalls>()), filter_(std::make_shared<EventFilter>()) {}

Connection::~Connection() {
  close(makeError(EngineShutDown, u"The connection to the browser was closed."_s));
}

/// The transport's thread holds the connection weakly and locks it on the main thread only: the
/// last reference must not fall on the thread that the transport would then wait for.
void Connection::start(FileDescriptor readEnd, FileDescriptor writeEnd) {
  const std::weak_ptr<Connection> weak = weak_from_this();
  const MessageInterest interest{
      [calls = calls_](qint64 identifier) { return calls->form(identifier); },
      [filter = filter_](const QString& method) {
        std::lock_guard lock(filter->mutex);
        return filter->methods.contains(method);
      }};
  const auto reader = std::make_shared<MessageReader>(interest);
  auto handleMessage = [weak, reader](std::string_view text) {
    auto message = std::make_shared<Message>(reader->read(text));
    if (std::holds_alternative<IgnoredMessage>(*message)) return;
    dispatch::mainAsync([weak, message] {
      if (const auto self = weak.lock()) self->deliver(std::move(*message));
    });
  };
  auto handleBegin = [calls = calls_](std::string_view beginning) {
    const auto identifier = replyIdentifier(beginning);
    const auto form = identifier ? calls->form(*identifier) : std::nullopt;
    if (form && form->begins) dispatch::mainAsync(form->begins);
  };
  auto handleClosed = [weak](const QString& reason) {
    const QString text = reason.isEmpty() ? u"The browser has ended."_s : reason;
    dispatch::mainAsync([weak, text] {
      if (const auto self = weak.lock()) self->handleEnd(makeError(EngineEnded, text));
    });
  };
  transport_ =
      std::make_unique<Transport>(std::move(readEnd), std::move(writeEnd),
                                  Transport::Handlers{handleMessage, handleBegin, handleClosed});
}

void Connection::send(Command command) {
  PendingCall call{command.session, command.method, command.form, command.callback, nullptr};
  if (closedReason_) {
    std::vector<PendingCall> calls;
    calls.push_back(std::move(call));
    return failLater(std::move(calls), *closedReason_);
  }
  const qint64 identifier = calls_->reserveIdentifier();
  call.timeout = dispatch::Timer::after(
      command.timeout, [weak = weak_from_this(), identifier, limit = command.timeout] {
        if (const auto self = weak.lock()) self->timeOut(identifier, limit);
      });
  calls_->add(identifier, std::move(call));
  transport_->send(encode(identifier, command));
}

void Connection::timeOut(qint64 identifier, std::chrono::milliseconds limit) {
  std::optional<PendingCall> call = calls_->take(identifier);
  if (!call) return;
  const QString seconds = QString::number(static_cast<double>(limit.count()) / 1000);
  call->fail(makeError(CommandTimedOut, u"The browser did not answer within %1 s."_s.arg(seconds)));
}

void Connection::addSession(const QString& identifier, std::weak_ptr<Session> session) {
  sessions_.insert(identifier, std::move(session));
}

void Connection::removeSession(const QString& identifier) {
  sessions_.remove(identifier);
}

void Connection::failSession(const QString& identifier, const Error& reason) {
  failLater(calls_->takeSession(identifier), reason);
}

void Connection::wantEvent(const QString& method) {
  std::lock_guard lock(filter_->mutex);
  filter_->methods.insert(method);
}

void Connection::deliver(Message message) {
  if (closedReason_) return;
  if (auto* reply = std::get_if<ReplyMessage>(&message)) {
    std::optional<PendingCall> call = calls_->take(reply->identifier);
    if (!call) return;
    if (!reply->reply) return call->fail(reply->reply.error());
    if (call->callback) call->callback(std::move(reply->reply));
  } else if (const auto* event = std::get_if<EventMessage>(&message)) {
    const auto session = sessions_.value(event->session).lock();
    if (session) session->deliverEvent(event->method, event->parameters);
  } else if (const auto* damaged = std::get_if<DamagedMessage>(&message)) {
    handleEnd(makeError(DamagedReply,
                        u"The browser sent a damaged message (%1)."_s.arg(damaged->reason)));
  }
}

void Connection::handleEnd(const Error& reason) {
  if (closedReason_) return;
  const auto self = shared_from_this();
  close(reason);
  if (endedHandler_) std::exchange(endedHandler_, {})(reason);
}

void Connection::close(const Error& reason) {
  if (closedReason_) return;
  closedReason_ = reason;
  transport_.reset();
  failLater(calls_->takeAll(), reason);
  const auto sessions = std::exchange(sessions_, {});
  for (const auto& weak : sessions)
    if (const auto session = weak.lock()) session->close(reason);
}

}  // namespace web
