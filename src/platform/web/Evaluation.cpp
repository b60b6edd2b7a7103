#include "platform/web/Evaluation.h"

#include <QJsonArray>

#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

Error describeException(const QJsonObject& details) {
  const QJsonObject exception = details[u"exception"].toObject();
  QString text = exception[u"description"].toString();
  if (text.isEmpty()) text = exception[u"value"].toVariant().toString();
  if (text.isEmpty()) text = details[u"text"].toString();
  return makeError(ScriptFailed, u"The script failed: %1"_s.arg(text.section(u'\n', 0, 0)));
}

Result<QJsonValue> valueOf(const Result<QJsonObject>& reply) {
  if (!reply) return tl::make_unexpected(reply.error());
  const QJsonValue exception = (*reply)[u"exceptionDetails"];
  if (exception.isObject()) return tl::make_unexpected(describeException(exception.toObject()));
  // Of a JavaScript null the browser sends the value, of undefined and NaN it sends none.
  return (*reply)[u"result"][u"value"];
}

/// Gathers the frames' values in their order. Alive as long as a reply that it waits for.
class FrameCollector {
 public:
  explicit FrameCollector(FrameValuesCallback callback) : callback_(std::move(callback)) {}
  FrameCollector(const FrameCollector&) = delete;
  FrameCollector& operator=(const FrameCollector&) = delete;
  ~FrameCollector() {
    std::vector<FrameValue> values;
    for (auto& session : sessions_)
      for (FrameValue& value : session)
        values.push_back(std::move(value));
    callback_(std::move(values));
  }

  size_t addSession() {
    sessions_.emplace_back();
    return sessions_.size() - 1;
  }
  size_t addFrame(size_t session, const QUrl& url) {
    sessions_[session].push_back(
        {url, failure(errorDomain.toString(), PageClosed, u"The frame is gone."_s)});
    return sessions_[session].size() - 1;
  }
  void setValue(size_t session, size_t frame, Result<QJsonValue> value) {
    sessions_[session][frame].value = std::move(value);
  }

 private:
  std::vector<std::vector<FrameValue>> sessions_;
  FrameValuesCallback callback_;
};

struct FrameWalk {
  std::shared_ptr<FrameCollector> collector;
  size_t sessionIndex = 0;
  std::shared_ptr<Session> session;
  QString script;
  std::chrono::milliseconds timeout;
};

/// A world of its own in each frame: scripts of the page cannot stand in the way.
void evaluateInFrame(const FrameWalk& walk, const QJsonObject& frame) {
  const size_t index = walk.collector->addFrame(walk.sessionIndex, QUrl(frame[u"url"].toString()));
  walk.session->send(
      u"Page.createIsolatedWorld"_s, {{u"frameId"_s, frame[u"id"].toString()}},
      [walk, index](const Result<QJsonObject>& world) {
        if (!world)
          return walk.collector->setValue(walk.sessionIndex, index,
                                          tl::make_unexpected(world.error()));
        evaluateScript(
            *walk.session, {walk.script, (*world)[u"executionContextId"].toInt()},
            [walk, index](Result<QJsonValue> value) {
              walk.collector->setValue(walk.sessionIndex, index, std::move(value));
            },
            walk.timeout);
      },
      walk.timeout);
}

// The tree is as deep as the page nests frames, which the browser itself bounds.
void walkTree(const FrameWalk& walk, const QJsonObject& tree) {
  evaluateInFrame(walk, tree[u"frame"].toObject());
  for (const QJsonValue child : tree[u"childFrames"].toArray())
    walkTree(walk, child.toObject());
}

}  // namespace

void evaluateScript(Session& session, const Script& script, ValueCallback callback,
                    std::chrono::milliseconds timeout) {
  QJsonObject parameters{{u"expression"_s, script.text},
                         {u"returnByValue"_s, true},
                         {u"awaitPromise"_s, true},
                         {u"userGesture"_s, false}};
  if (script.context) parameters.insert(u"contextId"_s, *script.context);
  session.send(
      u"Runtime.evaluate"_s, parameters,
      [callback = std::move(callback)](const Result<QJsonObject>& reply) {
        if (callback) callback(valueOf(reply));
      },
      timeout);
}

void evaluateScriptInFrames(const std::vector<std::shared_ptr<Session>>& sessions,
                            const QString& script, FrameValuesCallback callback,
                            std::chrono::milliseconds timeout) {
  const auto collector = std::make_shared<FrameCollector>(std::move(callback));
  for (const auto& session : sessions) {
    const FrameWalk walk{collector, collector->addSession(), session, script, timeout};
    session->send(
        u"Page.getFrameTree"_s, {},
        [walk](const Result<QJsonObject>& reply) {
          if (reply) walkTree(walk, (*reply)[u"frameTree"].toObject());
        },
        timeout);
  }
}

}  // namespace web
