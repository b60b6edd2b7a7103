#pragma once

#include <QJsonObject>
#include <QString>
#include <chrono>
#include <memory>
#include <mutex>

#include "platform/base/Error.h"
#include "platform/browsers/DevToolsEndpoint.h"

namespace browsers {

/// A conversation with one of the user's browsers by the DevTools protocol over a WebSocket. The
/// socket lives on the main queue; callers wait on threads of their own, and read the replies
/// there. One call at a time.
class DevToolsConnection {
 public:
  /// Blocks until the browser lets us in. A browser that asks its user for leave first answers
  /// only then: the error is `NotAllowed` when the time is over. Not on the main thread.
  static Result<std::shared_ptr<DevToolsConnection>> open(const DevToolsEndpoint& endpoint,
                                                          std::chrono::milliseconds limit);
  ~DevToolsConnection();
  DevToolsConnection(const DevToolsConnection&) = delete;
  DevToolsConnection& operator=(const DevToolsConnection&) = delete;

  /// The reply's result. `session` is empty for the browser itself. Not on the main thread.
  Result<QJsonObject> call(const QString& method, const QJsonObject& parameters,
                           const QString& session, std::chrono::milliseconds limit);

  bool isOpen() const;
  const DevToolsEndpoint& endpoint() const { return endpoint_; }

 private:
  struct Channel;
  DevToolsConnection(const DevToolsEndpoint& endpoint, std::shared_ptr<Channel> channel);

  const DevToolsEndpoint endpoint_;
  const std::shared_ptr<Channel> channel_;
  std::mutex callMutex_;
  int lastIdentifier_ = 0;
};

}  // namespace browsers
