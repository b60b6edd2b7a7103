#include "platform/web/PagePrompts.h"

using namespace Qt::StringLiterals;

namespace web {

void PagePrompts::observe(const std::shared_ptr<Session>& session) {
  const std::weak_ptr<Session> weak = session;
  subscriptions_.push_back(
      session->addEventHandler(u"Page.javascriptDialogOpening"_s, [weak](const QJsonObject& event) {
        if (const auto opened = weak.lock()) answerDialog(*opened, event);
      }));
}

void PagePrompts::answerDialog(Session& session, const QJsonObject& event) {
  const QString type = event[u"type"].toString();
  const bool accept = type == u"alert" || type == u"beforeunload";
  session.send(u"Page.handleJavaScriptDialog"_s, {{u"accept"_s, accept}});
}

}  // namespace web
