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

void run(const Call& call, const QString& script);

void takeReply(const Call& call, const Result<QJsonObject>& reply) {
  if (!reply) return call.callback(tl::unexpected(reply.error()));
  Result<QJsonValue> value = valueOf(call, *reply);
  const bool notYet = value && value->isString() && value->toString() == missing;
  if (notYet) return run(call, pageScriptText() + u'\n' + call.expression);
  call.callback(std::move(value));
}

void run(const Call& call, const QString& script) {
  call.page->evaluateApart(
      script, [call](const Result<QJsonObject>& reply) { takeReply(call, reply); }, call.timeout);
}

}  // namespace

void callPageScript(const std::shared_ptr<web::Page>& page, const QString& function,
                    const QJsonArray& arguments, Callback callback,
                    std::chrono::milliseconds timeout) {
  QByteArray list = QJsonDocument(arguments).toJson(QJsonDocument::Compact);
  list = list.mid(1, list.size() - 2);
  const QString expression = u"corvalisPage.%1("_s.arg(function) + QString::fromUtf8(list) + u')';
  // The scripts stay as long as the document: they are sent with the first call.
  const QString guarded = u"globalThis.corvalisPage?.ready === true ? %1 : '%2'"_s;
  run({page, function, expression, std::move(callback), timeout}, guarded.arg(expression, missing));
}

}  // namespace rendering
