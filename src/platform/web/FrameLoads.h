#pragma once

#include <QHash>
#include <QJsonObject>
#include <QString>
#include <optional>

#include "platform/web/FrameTree.h"
#include "platform/web/PageObservers.h"
#include "platform/web/PageSubscriptions.h"

namespace web {

/// Follows what the frames within a page's main frame load, in whatever process they are, and tells
/// the observers. Knows the frame of every request. Part of its page.
class FrameLoads {
 public:
  FrameLoads(Page& page, PageObservers& observers);

  /// Subscribes to the main frame's session. Called when the page is owned by a shared pointer.
  void begin(Session& session);
  /// Subscribes to a session of the page, the main frame's or that of frames in another process.
  void observe(Session& session);

  void setMainFrame(const QString& identifier) { frames_.setMainFrame(identifier); }
  const QString& main() const { return frames_.main(); }
  bool isMain(const QString& identifier) const { return frames_.isMain(identifier); }
  /// None for the main frame, and for a frame that the page does not have.
  std::optional<Frame> child(const QString& identifier) const { return frames_.child(identifier); }
  /// Empty when the request has ended.
  QString frameOfRequest(const QString& request) const { return requestFrames_.value(request); }

 private:
  void handleAttached(const QJsonObject& event);
  void handleDetached(const QJsonObject& event);
  void handleNavigated(const QJsonObject& event);
  void handleRequest(const QJsonObject& event);
  void handleRequestEnd(const QJsonObject& event);
  void handleLifecycle(const QJsonObject& event);

  Page& page_;
  PageObservers& observers_;
  FrameTree frames_;
  QHash<QString, QString> requestFrames_;
  PageSubscriptions subscriptions_;
};

}  // namespace web
