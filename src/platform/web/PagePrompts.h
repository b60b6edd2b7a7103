#pragma once

#include <vector>

#include "platform/web/Session.h"

namespace web {

/// Answers what a page asks its user, so that it never waits: alerts are taken note of, questions
/// are answered with no, leaving a page is allowed. Part of its page.
class PagePrompts {
 public:
  void observe(const std::shared_ptr<Session>& session);

 private:
  static void answerDialog(Session& session, const QJsonObject& event);

  std::vector<Subscription> subscriptions_;
};

}  // namespace web
