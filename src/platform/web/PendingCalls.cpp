#include "platform/web/PendingCalls.h"

using namespace Qt::StringLiterals;

namespace web {

void PendingCall::fail(const Error& reason) {
  if (!callback) return;
  const QString description = u"%1: %2"_s.arg(method, reason.localizedDescription);
  callback(tl::make_unexpected(Error{reason.domain, reason.code, description}));
}

void PendingCalls::add(qint64 identifier, PendingCall call) {
  std::lock_guard lock(mutex_);
  calls_.emplace(identifier, std::move(call));
}

std::optional<ReplyForm> PendingCalls::form(qint64 identifier) const {
  std::lock_guard lock(mutex_);
  const auto found = calls_.find(identifier);
  if (found == calls_.end()) return std::nullopt;
  return found->second.form;
}

std::optional<PendingCall> PendingCalls::take(qint64 identifier) {
  std::lock_guard lock(mutex_);
  const auto node = calls_.extract(identifier);
  if (node.empty()) return std::nullopt;
  return std::move(node.mapped());
}

std::vector<PendingCall> PendingCalls::takeAll() {
  std::lock_guard lock(mutex_);
  std::vector<PendingCall> taken;
  for (auto& [identifier, call] : calls_)
    taken.push_back(std::move(call));
  calls_.clear();
  return taken;
}

std::vector<PendingCall> PendingCalls::takeSession(const QString& session) {
  std::lock_guard lock(mutex_);
  std::vector<PendingCall> taken;
  for (auto call = calls_.begin(); call != calls_.end();) {
    if (call->second.session != session) {
      ++call;
      continue;
    }
    taken.push_back(std::move(call->second));
    call = calls_.erase(call);
  }
  return taken;
}

}  // namespace web
