#include "platform/web/FrameTree.h"

namespace web {

void FrameTree::attached(const QString& identifier) {
  children_.insert(identifier, {});
}

void FrameTree::navigated(const QJsonObject& frame) {
  const QString identifier = frame[u"id"].toString();
  if (!isMain(identifier)) children_.insert(identifier, QUrl(frame[u"url"].toString()));
}

std::optional<Frame> FrameTree::child(const QString& identifier) const {
  const auto found = children_.constFind(identifier);
  if (found == children_.constEnd()) return std::nullopt;
  return Frame{identifier, Frame::Kind::Child, *found};
}

}  // namespace web
