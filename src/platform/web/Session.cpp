#include "platform/web/Session.h"

#include <algorithm>

#include "platform/dispatch/Dispatch.h"
#include "platform/web/Connection.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

Error named(const QString& method, const Error& reason) {
  return Error{reason.domain, reason.code, u"%1: %2"_s.arg(method, reason.localizedDescription)};
}

}  // namespace

Session::~Session() {
  close(makeError(PageClosed, u"The page was closed."_s));
}

void Session::send(const QString& method, const QJsonObject& parameters, ReplyCallback callback,
                   std::chrono::milliseconds timeout) {
  auto complete = [callback = std::move(callback)](Result<DataReply> reply) {
    if (!callback) return;
    if (reply)
      callback(std::move(reply->rest));
    else
      callback(tl::make_unexpected(reply.error()));
  };
  Command command{{}, method, parameters, {}, std::move(complete), timeout};
  sendCommand(std::move(command));
}

void Session::sendForData(const QString& method, const QJsonObject& parameters, ReplyForm form,
                          DataCallback callback, std::chrono::milliseconds timeout) {
  sendCommand({{}, method, parameters, std::move(form), std::move(callback), timeout});
}

void Session::sendCommand(Command command) {
  if (closedReason_) return fail(command, *closedReason_);
  if (!connection_) return waiting_.push_back(std::move(command));
  command.session = identifier_;
  connection_->send(std::move(command));
}

/// Later, like every callback.
void Session::fail(const Command& command, const Error& reason) {
  if (!command.callback) return;
  dispatch::mainAsync([callback = command.callback, error = named(command.method, reason)] {
    callback(tl::make_unexpected(error));
  });
}

Subscription Session::addEventHandler(const QString& method, EventHandler handler) {
  auto subscription = std::make_shared<const EventHandler>(std::move(handler));
  handlers_[method].push_back(subscription);
  if (connection_) connection_->wantEvent(method);
  return subscription;
}

void Session::attach(std::shared_ptr<Connection> connection, const QString& identifier) {
  if (closedReason_) return;
  connection_ = std::move(connection);
  identifier_ = identifier;
  connection_->addSession(identifier, weak_from_this());
  for (auto handlers = handlers_.cbegin(); handlers != handlers_.cend(); ++handlers)
    connection_->wantEvent(handlers.key());
  for (Command& command : std::exchange(waiting_, {}))
    sendCommand(std::move(command));
}

void Session::close(const Error& reason) {
  if (closedReason_) return;
  closedReason_ = reason;
  failCommands(reason);
  if (connection_) connection_->removeSession(identifier_);
}

void Session::failCommands(const Error& reason) {
  for (const Command& command : std::exchange(waiting_, {}))
    fail(command, reason);
  if (connection_) connection_->failSession(identifier_, reason);
}

void Session::deliverEvent(const QString& method, const QJsonObject& parameters) {
  const auto found = handlers_.find(method);
  if (found == handlers_.end()) return;
  std::erase_if(*found, [](const auto& handler) { return handler.expired(); });
  // A handler may add others, drop them or close the session.
  const auto handlers = *found;
  for (const auto& weak : handlers) {
    const auto handler = weak.lock();
    if (handler && !closedReason_) (*handler)(parameters);
  }
}

}  // namespace web
