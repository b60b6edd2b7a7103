#pragma once

#include <QJsonObject>
#include <memory>
#include <optional>

#include "platform/web/Session.h"

namespace web {

/// A world of scripts of our own in the main frame's document: it shares the document with the page
/// and none of its names. It is made when it is first used and ends with the document. Main thread
/// only.
class IsolatedWorld : public std::enable_shared_from_this<IsolatedWorld> {
 public:
  /// `name` sets worlds apart.
  static std::shared_ptr<IsolatedWorld> create(std::shared_ptr<Session> session, QString name);

  /// `Runtime.evaluate` in this world; a promise is awaited, its value is given by value. `frame`
  /// is the engine's name of the main frame.
  void evaluate(const QString& frame, const QString& script, ReplyCallback callback,
                std::chrono::milliseconds timeout);

 private:
  IsolatedWorld(std::shared_ptr<Session> session, QString name);
  void follow();
  void run(int context, const QString& script, ReplyCallback callback,
           std::chrono::milliseconds timeout);

  std::shared_ptr<Session> session_;
  const QString name_;
  std::optional<int> context_;
  Subscription navigated_;
};

}  // namespace web
