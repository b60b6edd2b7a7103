#include "platform/web/ChildFrames.h"

#include "platform/web/Connection.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {

ChildFrames::ChildFrames(Scripts scripts, SessionHandler newFrame)
    : scripts_(scripts), newFrame_(std::move(newFrame)) {}

void ChildFrames::configure(const std::shared_ptr<Session>& session) {
  const std::weak_ptr<Session> weak = session;
  subscriptions_.push_back(session->addEventHandler(u"Target.attachedToTarget"_s,
                                                    [this, weak](const QJsonObject& event) {
                                                      if (const auto parent = weak.lock())
                                                        attach(parent, event);
                                                    }));
  subscriptions_.push_back(session->addEventHandler(
      u"Target.detachedFromTarget"_s, [this](const QJsonObject& event) { detach(event); }));
  session->send(u"Page.enable"_s, {});
  session->send(u"Page.setLifecycleEventsEnabled"_s, {{u"enabled"_s, true}});
  // Bodies are never asked for, so none need be kept.
  session->send(u"Network.enable"_s,
                {{u"maxTotalBufferSize"_s, 0}, {u"maxResourceBufferSize"_s, 0}});
  session->send(u"Emulation.setEmulatedMedia"_s, {{u"media"_s, u"screen"_s}});
  if (scripts_ == Scripts::Disabled)
    session->send(u"Emulation.setScriptExecutionDisabled"_s, {{u"value"_s, true}});
  // New frames wait until they have these settings too.
  session->send(
      u"Target.setAutoAttach"_s,
      {{u"autoAttach"_s, true}, {u"waitForDebuggerOnStart"_s, true}, {u"flatten"_s, true}});
}

void ChildFrames::attach(const std::shared_ptr<Session>& parent, const QJsonObject& event) {
  const QString identifier = event[u"sessionId"].toString();
  auto session = std::make_shared<Session>();
  session->attach(parent->connection(), identifier);
  sessions_.insert(identifier, session);
  // Workers are let go without settings: they show nothing.
  if (event[u"targetInfo"][u"type"].toString() == u"iframe") {
    newFrame_(session);
    configure(session);
  }
  session->send(u"Runtime.runIfWaitingForDebugger"_s, {});
}

void ChildFrames::detach(const QJsonObject& event) {
  const auto session = sessions_.take(event[u"sessionId"].toString());
  if (session) session->close(makeError(PageClosed, u"The frame is gone."_s));
}

std::vector<std::shared_ptr<Session>> ChildFrames::sessions() const {
  return {sessions_.cbegin(), sessions_.cend()};
}

void ChildFrames::closeAll(const Error& reason) {
  for (const auto& session : std::exchange(sessions_, {}))
    session->close(reason);
}

}  // namespace web
