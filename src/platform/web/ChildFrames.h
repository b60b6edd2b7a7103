#pragma once

#include <QHash>
#include <functional>
#include <memory>
#include <vector>

#include "platform/web/PageConfiguration.h"
#include "platform/web/Session.h"

namespace web {

/// The frames of a page that live in other processes, each with a session of its own, and the
/// settings that every session of the page needs. Part of its page.
class ChildFrames {
 public:
  using SessionHandler = std::function<void(const std::shared_ptr<Session>&)>;

  /// `newFrame` is called for each new session before its document begins to load.
  ChildFrames(Scripts scripts, SessionHandler newFrame);

  /// Gives a session of the page, the main frame's or another, the page's settings.
  void configure(const std::shared_ptr<Session>& session);
  std::vector<std::shared_ptr<Session>> sessions() const;
  void closeAll(const Error& reason);

 private:
  void attach(const std::shared_ptr<Session>& parent, const QJsonObject& event);
  void detach(const QJsonObject& event);

  Scripts scripts_;
  SessionHandler newFrame_;
  QHash<QString, std::shared_ptr<Session>> sessions_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace web
