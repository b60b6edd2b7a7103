#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "platform/web/Page.h"
#include "platform/web/Session.h"

namespace web {

/// What one part of a page hears of its sessions. The page, and with it the part, is held while a
/// handler runs: an observer may drop it.
class PageSubscriptions {
 public:
  explicit PageSubscriptions(Page& page) : page_(page) {}

  /// Only of a page that is owned by a shared pointer.
  template <class Part>
  void add(Session& session, const char* method, Part& part,
           void (Part::*handler)(const QJsonObject&)) {
    subscriptions_.push_back(session.addEventHandler(
        QString::fromLatin1(method),
        [&part, weak = page_.weak_from_this(), handler](const QJsonObject& event) {
          if (const auto page = weak.lock()) (part.*handler)(event);
        }));
  }

 private:
  Page& page_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace web
