#include "platform/desktop/internal/PortalRequest.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <memory>

#include "platform/base/Identifier.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/desktop/internal/SignalReceiver.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dispatch/Timer.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

const QString portalService = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString requestInterface = u"org.freedesktop.portal.Request"_s;

QString newToken() {
  return u"corvalis_"_s + newUniversallyUniqueIdentifier().remove(u'-');
}

/// One request, kept by itself until it has been answered or given up.
class PortalRequest : public std::enable_shared_from_this<PortalRequest> {
 public:
  explicit PortalRequest(std::function<void(Result<QVariantMap>)> completion)
      : completion_(std::move(completion)) {}

  void start(const PortalCall& call, std::chrono::milliseconds limit) {
    self_ = shared_from_this();
    const QString token = newToken();
    // The path is known before the call, so the response cannot come before somebody listens.
    path_ = portalPath + u"/request/"_s +
            QDBusConnection::sessionBus().baseService().mid(1).replace(u'.', u'_') + u'/' + token;
    listen();
    timer_ = dispatch::Timer::after(limit, [this] { giveUp(); });
    send(call, token, limit);
  }

 private:
  void listen() {
    response_ = std::make_unique<SignalReceiver>(
        portalService, path_, requestInterface, u"Response"_s,
        [this](const QDBusMessage& message) { answered(message); });
  }

  void send(const PortalCall& call, const QString& token, std::chrono::milliseconds limit) {
    auto message =
        QDBusMessage::createMethodCall(portalService, portalPath, call.interface, call.method);
    QVariantMap options = call.options;
    options.insert(u"handle_token"_s, token);
    message.setArguments(QVariantList(call.arguments) << options);
    auto* watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(message, static_cast<int>(limit.count())));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished,
                     [weak = weak_from_this()](QDBusPendingCallWatcher* finished) {
                       finished->deleteLater();
                       if (const auto request = weak.lock()) request->accepted(*finished);
                     });
  }

  void accepted(const QDBusPendingCall& call) {
    const QDBusPendingReply<QDBusObjectPath> reply = call;
    if (reply.isError()) return finish(fail(DesktopErrorUnavailable, reply.error().message()));
    // Portals before version 0.9 choose the request's path themselves.
    if (reply.value().path() == path_) return;
    path_ = reply.value().path();
    listen();
  }

  void answered(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (message.signature() != u"ua{sv}"_s)
      return finish(fail(DesktopErrorProgramFailed, u"The desktop portal's answer is damaged."_s));
    switch (arguments[0].toUInt()) {
      case 0:
        return finish(qdbus_cast<QVariantMap>(arguments[1].value<QDBusArgument>()));
      case 1:
        return finish(fail(DesktopErrorCancelled, u"It was cancelled."_s));
      default:
        return finish(fail(DesktopErrorProgramFailed, u"The desktop portal reports a failure."_s));
    }
  }

  void giveUp() {
    QDBusConnection::sessionBus().send(
        QDBusMessage::createMethodCall(portalService, path_, requestInterface, u"Close"_s));
    finish(fail(DesktopErrorNoAnswer, u"The desktop portal did not answer in time."_s));
  }

  static tl::unexpected<Error> fail(DesktopErrorCode code, const QString& description) {
    return tl::unexpected<Error>(desktopError(code, description));
  }

  void finish(const Result<QVariantMap>& result) {
    timer_.reset();
    const auto completion = std::exchange(completion_, {});
    // The signal that led here is still being delivered to `response_`.
    dispatch::mainAsync([keep = std::move(self_)] {});
    if (completion) completion(result);
  }

  std::function<void(Result<QVariantMap>)> completion_;
  QString path_;
  std::unique_ptr<SignalReceiver> response_;
  std::unique_ptr<dispatch::Timer> timer_;
  std::shared_ptr<PortalRequest> self_;
};

}  // namespace

void callPortal(const PortalCall& call, std::chrono::milliseconds limit,
                std::function<void(Result<QVariantMap>)> completion) {
  std::make_shared<PortalRequest>(std::move(completion))->start(call, limit);
}

}  // namespace desktop
