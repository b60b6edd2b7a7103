#include "platform/web/FrameLoads.h"

using namespace Qt::StringLiterals;

namespace web {

FrameLoads::FrameLoads(Page& page, PageObservers& observers)
    : page_(page), observers_(observers), subscriptions_(page) {}

void FrameLoads::begin(Session& session) {
  subscriptions_.add(session, "Page.frameAttached", *this, &FrameLoads::handleAttached);
  subscriptions_.add(session, "Page.frameDetached", *this, &FrameLoads::handleDetached);
}

void FrameLoads::observe(Session& session) {
  subscriptions_.add(session, "Network.requestWillBeSent", *this, &FrameLoads::handleRequest);
  subscriptions_.add(session, "Network.loadingFinished", *this, &FrameLoads::handleRequestEnd);
  subscriptions_.add(session, "Network.loadingFailed", *this, &FrameLoads::handleRequestEnd);
  subscriptions_.add(session, "Page.frameNavigated", *this, &FrameLoads::handleNavigated);
  subscriptions_.add(session, "Page.lifecycleEvent", *this, &FrameLoads::handleLifecycle);
}

void FrameLoads::handleAttached(const QJsonObject& event) {
  frames_.attached(event[u"frameId"].toString());
}

void FrameLoads::handleDetached(const QJsonObject& event) {
  // A frame that moves to another process is not gone.
  if (event[u"reason"].toString() != u"swap") frames_.detached(event[u"frameId"].toString());
}

void FrameLoads::handleNavigated(const QJsonObject& event) {
  const QJsonObject frame = event[u"frame"].toObject();
  frames_.navigated(frame);
  const QString identifier = frame[u"id"].toString();
  if (isMain(identifier)) return frames_.clearChildren();
  if (const std::optional<Frame> shown = child(identifier))
    observers_.notify(&PageObserver::pageCommittedLoad, page_, *shown);
}

void FrameLoads::handleRequest(const QJsonObject& event) {
  const QString frame = event[u"frameId"].toString();
  requestFrames_.insert(event[u"requestId"].toString(), frame);
  const bool isDocument = event[u"type"].toString() == u"Document";
  if (!isDocument || isMain(frame) || !child(frame)) return;
  const Frame provisional{frame, Frame::Kind::Child, QUrl(event[u"request"][u"url"].toString())};
  observers_.notify(event.contains(u"redirectResponse") ? &PageObserver::pageReceivedRedirect
                                                        : &PageObserver::pageStartedProvisionalLoad,
                    page_, provisional);
}

void FrameLoads::handleRequestEnd(const QJsonObject& event) {
  requestFrames_.remove(event[u"requestId"].toString());
}

void FrameLoads::handleLifecycle(const QJsonObject& event) {
  if (event[u"name"].toString() != u"load") return;
  if (const std::optional<Frame> loaded = child(event[u"frameId"].toString()))
    observers_.notify(&PageObserver::pageFinishedLoad, page_, *loaded);
}

}  // namespace web
