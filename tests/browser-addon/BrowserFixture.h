#pragma once

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QProcess>
#include <future>
#include <memory>

#include "intake/CapturePayload.h"
#include "intake/PageMerging.h"
#include "platform/browsers/Chromium.h"
#include "platform/browsers/DevToolsConnection.h"
#include "platform/browsers/FrontTab.h"
#include "platform/desktop/ApplicationService.h"
#include "support/HttpServer.h"
#include "support/Wait.h"

namespace addon_test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Runs the main queue until work on another thread has ended.
template <class Work>
auto elsewhere(Work work) {
  auto result = std::async(std::launch::async, work);
  EXPECT_TRUE(support::waitFor([&] { return result.wait_for(0s) == std::future_status::ready; },
                               std::chrono::minutes(2)));
  return result.get();
}

/// The running program, as far as its door.
class ReceivingProgram : public desktop::ApplicationReceiver {
 public:
  ReceivingProgram() { service_ = std::move(*desktop::ApplicationService::claim(*this)); }
  void activate(const QVariantMap&) override {}
  void open(const QStringList& addresses, const QVariantMap&) override { opened << addresses; }
  void activateAction(const QString&, const QVariantList&, const QVariantMap&) override {}
  QStringList opened;

 private:
  std::unique_ptr<desktop::ApplicationService> service_;
};

/// A conversation with the browser under test.
class Inspector {
 public:
  bool open() {
    const auto endpoint = browsers::readEndpoint(Chromium::profileFolder());
    const auto connection =
        elsewhere([&] { return browsers::DevToolsConnection::open(*endpoint, 30s); });
    if (connection) connection_ = *connection;
    return connection_ != nullptr;
  }

  /// The identifier of the target of that type whose address begins so; empty when there is none.
  QString target(const QString& type, const QString& address) {
    const auto reply = call(u"Target.getTargets"_s,
                            {{u"filter"_s, QJsonArray{QJsonObject{{u"type"_s, type}},
                                                      QJsonObject{{u"exclude"_s, true}}}}});
    for (const auto& info : reply.value(u"targetInfos"_s).toArray()) {
      const QJsonObject item = info.toObject();
      if (item.value(u"url"_s).toString().startsWith(address))
        return item.value(u"targetId"_s).toString();
    }
    return {};
  }

  /// The value of a program in a target; a promise's when it has one.
  QJsonValue evaluate(const QString& target, const QString& program) {
    const QString session =
        call(u"Target.attachToTarget"_s, {{u"targetId"_s, target}, {u"flatten"_s, true}})
            .value(u"sessionId"_s)
            .toString();
    return call(u"Runtime.evaluate"_s,
                {{u"expression"_s, program},
                 {u"awaitPromise"_s, true},
                 {u"userGesture"_s, true},
                 {u"returnByValue"_s, true}},
                session)
        .value(u"result"_s)
        .toObject()
        .value(u"value"_s);
  }

  /// Until the document of that path has loaded; the target has its address before its document.
  bool waitForPage(const QString& target, const QString& path) {
    return support::waitFor([&] {
      return evaluate(target, u"document.readyState + location.pathname"_s) == u"complete"_s + path;
    });
  }

  QJsonObject call(const QString& method, const QJsonObject& parameters,
                   const QString& session = {}) {
    return elsewhere([&] { return connection_->call(method, parameters, session, 30s); })
        .value_or(QJsonObject());
  }

 private:
  std::shared_ptr<browsers::DevToolsConnection> connection_;
};

/// What the program makes of a request.
inline std::string mergedPage(const QString& request) {
  const CapturePayload payload = CapturePayload::decode(request);
  if (!payload.page || !payload.styles || !payload.frames) return "incomplete";
  return PageMerging::withFrames(PageMerging::withStyles(*payload.page, *payload.styles),
                                 *payload.frames)
      .toStdString();
}

}  // namespace addon_test
