#pragma once

#include <QHash>
#include <QJsonObject>
#include <QString>
#include <optional>
#include <vector>

#include "platform/web/PageObserver.h"

namespace web {

/// The frames of a page as the browser's events tell of them.
class FrameTree {
 public:
  void setMainFrame(const QString& identifier) { main_ = identifier; }
  bool isMain(const QString& identifier) const { return identifier == main_; }
  const QString& main() const { return main_; }

  void attached(const QString& identifier);
  void detached(const QString& identifier) { children_.remove(identifier); }
  /// `frame` is the protocol's Page.Frame.
  void navigated(const QJsonObject& frame);
  /// The main frame has a new document: the frames of the one before are gone.
  void clearChildren() { children_.clear(); }

  /// None for a frame that the page does not have.
  std::optional<Frame> child(const QString& identifier) const;
  std::vector<QString> children() const { return {children_.keyBegin(), children_.keyEnd()}; }

 private:
  QString main_;
  QHash<QString, QUrl> children_;
};

}  // namespace web
