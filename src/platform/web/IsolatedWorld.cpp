#include "platform/web/IsolatedWorld.h"

using namespace Qt::StringLiterals;

namespace web {

std::shared_ptr<IsolatedWorld> IsolatedWorld::create(std::shared_ptr<Session> session,
                                                     QString name) {
  std::shared_ptr<IsolatedWorld> world(new IsolatedWorld(std::move(session), std::move(name)));
  world->follow();
  return world;
}

IsolatedWorld::IsolatedWorld(std::shared_ptr<Session> session, QString name)
    : session_(std::move(session)), name_(std::move(name)) {}

void IsolatedWorld::follow() {
  navigated_ = session_->addEventHandler(
      u"Page.frameNavigated"_s, [weak = weak_from_this()](const QJsonObject& event) {
        const bool isMain = !event[u"frame"].toObject().contains(u"parentId");
        if (const auto self = weak.lock(); self && isMain) self->context_.reset();
      });
}

void IsolatedWorld::evaluate(const QString& frame, const QString& script, ReplyCallback callback,
                             std::chrono::milliseconds timeout) {
  if (context_) return run(*context_, script, std::move(callback), timeout);
  session_->send(u"Page.createIsolatedWorld"_s, {{u"frameId"_s, frame}, {u"worldName"_s, name_}},
                 [self = shared_from_this(), script, callback = std::move(callback),
                  timeout](const Result<QJsonObject>& reply) {
                   if (!reply) return callback(reply);
                   self->context_ = (*reply)[u"executionContextId"].toInt();
                   self->run(*self->context_, script, callback, timeout);
                 });
}

void IsolatedWorld::run(int context, const QString& script, ReplyCallback callback,
                        std::chrono::milliseconds timeout) {
  session_->send(u"Runtime.evaluate"_s,
                 {{u"expression"_s, script},
                  {u"contextId"_s, context},
                  {u"returnByValue"_s, true},
                  {u"awaitPromise"_s, true}},
                 std::move(callback), timeout);
}

}  // namespace web
