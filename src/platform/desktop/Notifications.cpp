#include "platform/desktop/Notifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QHash>
#include <optional>
#include <vector>

#include "platform/base/Log.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/desktop/internal/SignalReceiver.h"
#include "platform/desktop/internal/SoundFiles.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

const QString service = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;
constexpr int patience = 10'000;  // milliseconds

QDBusMessage serverCall(const QString& method) {
  return QDBusMessage::createMethodCall(service, path, service, method);
}

/// The desktop's notification server. What it can do is asked once for each server that comes.
class DesktopNotifications : public Notifications,
                             public std::enable_shared_from_this<DesktopNotifications> {
 public:
  DesktopNotifications(std::shared_ptr<FileManager> fileManager,
                       std::shared_ptr<SoundPlayer> sounds)
      : fileManager_(std::move(fileManager)), sounds_(std::move(sounds)) {
    watcher_.setConnection(QDBusConnection::sessionBus());
    watcher_.addWatchedService(service);
    QObject::connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, &watcher_,
                     [this] { forgetServer(); });
  }

  void deliver(const Notification& notification) override {
    dispatch::mainAsync([=, self = shared_from_this()] { self->enqueue(notification); });
  }

 private:
  void forgetServer() {
    capabilities_.reset();
    files_.clear();
  }

  void enqueue(const Notification& notification) {
    if (capabilities_) return send(notification);
    waiting_.push_back(notification);
    if (waiting_.size() == 1) askCapabilities();
  }

  template <class Then>
  void call(const QDBusMessage& message, Then then) {
    auto* call =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message, patience));
    QObject::connect(call, &QDBusPendingCallWatcher::finished,
                     [=, self = shared_from_this()](QDBusPendingCallWatcher* ended) {
                       ended->deleteLater();
                       then(*self, *ended);
                     });
  }

  void askCapabilities() {
    call(serverCall(u"GetCapabilities"_s), [](auto& self, const QDBusPendingCall& ended) {
      const QDBusPendingReply<QStringList> reply = ended;
      self.sendWaiting(reply.isError() ? QStringList() : reply.value(), reply.error().message());
    });
  }

  void sendWaiting(const QStringList& capabilities, const QString& error) {
    const auto waiting = std::exchange(waiting_, {});
    if (!error.isEmpty()) return logLine(u"The desktop shows no notifications: %1"_s.arg(error));
    capabilities_ = capabilities;
    for (const Notification& notification : waiting)
      send(notification);
  }

  bool can(const QString& capability) const { return capabilities_->contains(capability); }

  void send(const Notification& notification) {
    if (!can(u"sound"_s) && sounds_ && !notification.soundName.isEmpty())
      sounds_->play(notification.soundName);
    auto message = serverCall(u"Notify"_s);
    message << u"Corvalis"_s << 0U << QString::fromUtf16(applicationIdentifier)
            << notification.title << body(notification) << actions(notification)
            << hints(notification) << -1;
    call(message, [file = notification.filePath](auto& self, const QDBusPendingCall& ended) {
      const QDBusPendingReply<uint> reply = ended;
      if (reply.isError())
        return logLine(u"A notification was not shown: %1"_s.arg(reply.error().message()));
      if (!file.isEmpty()) self.rememberFile(reply.value(), file);
    });
  }

  QString body(const Notification& notification) const {
    return can(u"body-markup"_s) ? notification.informativeText.toHtmlEscaped()
                                 : notification.informativeText;
  }

  QStringList actions(const Notification& notification) const {
    if (notification.filePath.isEmpty() || !can(u"actions"_s)) return {};
    return {u"default"_s, u"Show File"_s, u"show"_s, u"Show File"_s};
  }

  QVariantMap hints(const Notification& notification) const {
    const bool failed = notification.kind == Notification::Kind::Failure;
    QVariantMap hints{{u"desktop-entry"_s, QString::fromUtf16(applicationIdentifier)},
                      {u"urgency"_s, QVariant::fromValue<uchar>(1)},
                      {u"category"_s, failed ? u"transfer.error"_s : u"transfer.complete"_s}};
    const QString sound = soundThemeName(notification.soundName);
    if (can(u"sound"_s) && !sound.isEmpty())
      hints.insert(u"sound-name"_s, sound);
    else
      hints.insert(u"suppress-sound"_s, true);
    return hints;
  }

  void rememberFile(uint identifier, const QString& file) {
    listen();
    files_.insert(identifier, file);
  }

  void listen() {
    if (invoked_) return;
    invoked_ = receiver(u"ActionInvoked"_s, [this](uint identifier) {
      if (fileManager_ && files_.contains(identifier))
        fileManager_->reveal(files_.value(identifier));
    });
    closed_ =
        receiver(u"NotificationClosed"_s, [this](uint identifier) { files_.remove(identifier); });
  }

  static std::unique_ptr<SignalReceiver> receiver(const QString& signal,
                                                  std::function<void(uint)> handle) {
    return std::make_unique<SignalReceiver>(
        service, path, service, signal, [handle = std::move(handle)](const QDBusMessage& message) {
          if (message.signature().startsWith(u'u')) handle(message.arguments().first().toUInt());
        });
  }

  std::shared_ptr<FileManager> fileManager_;
  std::shared_ptr<SoundPlayer> sounds_;
  QDBusServiceWatcher watcher_;
  std::optional<QStringList> capabilities_;
  std::vector<Notification> waiting_;
  /// By the server's number of the notification.
  QHash<uint, QString> files_;
  std::unique_ptr<SignalReceiver> invoked_;
  std::unique_ptr<SignalReceiver> closed_;
};

}  // namespace

std::shared_ptr<Notifications> Notifications::create(std::shared_ptr<FileManager> fileManager,
                                                     std::shared_ptr<SoundPlayer> sounds) {
  return std::make_shared<DesktopNotifications>(std::move(fileManager), std::move(sounds));
}

}  // namespace desktop
