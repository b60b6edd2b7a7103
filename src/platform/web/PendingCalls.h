#pragma once

#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/dispatch/Timer.h"
#include "platform/web/Message.h"

namespace web {

/// A command whose reply has not come.
struct PendingCall {
  QString session;
  QString method;
  ReplyForm form;
  std::function<void(Result<DataReply>)> callback;
  std::unique_ptr<dispatch::Timer> timeout;

  /// Ends the call with an error of the same cause that names the method.
  void fail(const Error& reason);
};

/// The commands under way. Calls are added and taken on the main thread, so whoever takes one ends
/// it, and ends it alone; the transport's thread asks for the form of a reply.
class PendingCalls {
 public:
  qint64 reserveIdentifier() { return ++lastIdentifier_; }
  void add(qint64 identifier, PendingCall call);
  std::optional<ReplyForm> form(qint64 identifier) const;
  std::optional<PendingCall> take(qint64 identifier);
  std::vector<PendingCall> takeAll();
  std::vector<PendingCall> takeSession(const QString& session);

 private:
  mutable std::mutex mutex_;
  std::map<qint64, PendingCall> calls_;
  qint64 lastIdentifier_ = 0;
};

}  // namespace web
