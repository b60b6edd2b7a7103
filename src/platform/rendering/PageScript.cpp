#include "platform/rendering/PageScript.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "platform/rendering/PageScriptText.h"
#include "platform/rendering/RenderingError.h"
#include "platform/web/Page.h"
#include "platform/web/WebError.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

constexpr QStringView missing = u"corvalis:missing";

using Callback = std::function<void(Result<QJsonValue>)>;

struct Call {
  std::shared_ptr<web::Page> page;
  QString function;
  QString expression;
  Callback callback;
  std::chrono::milliseconds timeout;
};

Result<QJsonValue> valueOf(const Call& call, const QJsonObject& reply) {
  const QJsonObject exception = reply.value("exceptionDetails"_L1).toObject();
  if (exception.isEmpty()) return reply.value("result"_L1).toObject().value("value"_L1);
  const QString reason =
      exception.value("exception"_L1).toObject().value("description"_L1).toString();
  return tl::unexpected(web::makeError(
      web::ScriptFailed, u"The page could not be read (%1): %2"_s.arg(call.function, reason)));
}

void run(const Call& call, int world, const QString& script);

void takeReply(const Call& call, int world, const Result<QJsonObject>& reply) {
  if (!reply) return call.callback(tl::unexpected(reply.error()));
  Result<QJsonValue> value = valueOf(call, *reply);
  const bool notYet = value && value->isString() && value->toString() == missing;
  if (notYet) return run(call, world, pageScriptText() + u'\n' + call.expression);
  call.callback(std::move(value));
}

void run(const Call& call, int world, const QString& script) {
  const QJsonObject parameters{{"expression"_L1, script},
                               {"contextId"_L1, world},
                               {"returnByValue"_L1, true},
                               {"awaitPromise"_L1, true}};
  call.page->send(
      u"Runtime.evaluate"_s, parameters,
      [call, world](Result<QJsonObject> reply) { takeReply(call, world, reply); }, call.timeout);
}

/// A world of the same name is used again, so what the scripts have kept is still there.
void enterWorld(const Call& call) {
  const QJsonObject parameters{{"frameId"_L1, call.page->targetIdentifier()},
                               {"worldName"_L1, u"corvalis"_s}};
  call.page->send(u"Page.createIsolatedWorld"_s, parameters, [call](Result<QJsonObject> reply) {
    if (!reply) return call.callback(tl::unexpected(reply.error()));
    const int world = reply->value("executionContextId"_L1).toInt();
    const QString guarded = u"globalThis.corvalisPage?.ready === true ? %1 : '%2'"_s;
    run(call, world, guarded.arg(call.expression, missing));
  });
}

}  // namespace

void callPageScript(const std::shared_ptr<web::Page>& page, const QString& function,
                    const QJsonArray& arguments, Callback callback,
                    std::chrono::milliseconds timeout) {
  QByteArray list = QJsonDocument(arguments).toJson(QJsonDocument::Compact);
  list = list.mid(1, list.size() - 2);
  const QString expression = u"corvalisPage.%1("_s.arg(function) + QString::fromUtf8(list) + u')';
  enterWorld({page, function, expression, std::move(callback), timeout});
}

}  // namespace rendering
