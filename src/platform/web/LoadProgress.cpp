#include "platform/web/LoadProgress.h"

namespace web {

void LoadProgress::restart() {
  *this = {};
}

void LoadProgress::requestStarted(const QString& request) {
  open_.insert(request);
  raiseTo(afterRequest);
}

void LoadProgress::requestEnded(const QString& request) {
  if (!open_.remove(request)) return;
  ++ended_;
  if (estimate_ < afterCommit) return;
  const double share = static_cast<double>(ended_) / static_cast<double>(ended_ + open_.size());
  raiseTo(afterCommit + (beforeFinish - afterCommit) * share * share);
}

}  // namespace web
