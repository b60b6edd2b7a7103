#include "platform/desktop/internal/InstanceCall.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QLocalSocket>
#include <algorithm>

#include "platform/desktop/internal/BusDoor.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/desktop/internal/SocketDoor.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

constexpr int patience = 30'000;  // milliseconds
constexpr qint64 pieceSize = 1024 * 1024;

/// An array in a bus message ends at 64 MiB (D-Bus Specification, "Valid Signatures"/arrays).
constexpr qint64 longestBusRequest = 64'000'000;

QString serviceName() {
  return QString::fromUtf16(applicationIdentifier);
}

tl::unexpected<Error> noAnswer(const QString& cause) {
  return failure(QString::fromUtf16(desktopErrorDomain), DesktopErrorNoAnswer,
                 u"The running Corvalis does not answer: %1."_s.arg(cause));
}

bool writeAll(QLocalSocket& socket, const QByteArray& bytes) {
  for (qint64 sent = 0; sent < bytes.size(); sent += pieceSize) {
    socket.write(bytes.constData() + sent, std::min(pieceSize, bytes.size() - sent));
    while (socket.bytesToWrite() > 0)
      if (!socket.waitForBytesWritten(patience)) return false;
  }
  return true;
}

bool nobodyListens(QLocalSocket::LocalSocketError error) {
  return error == QLocalSocket::ServerNotFoundError ||
         error == QLocalSocket::ConnectionRefusedError;
}

QDBusMessage busCall(const InstanceRequest& request) {
  const auto method = [](const QString& name) {
    auto message = QDBusMessage::createMethodCall(serviceName(), instanceObjectPath(),
                                                  u"org.freedesktop.Application"_s, name);
    message.setAutoStartService(false);
    return message;
  };
  QDBusMessage message;
  switch (request.kind) {
    case InstanceRequest::Kind::Activate:
      message = method(u"Activate"_s);
      break;
    case InstanceRequest::Kind::Open:
      message = method(u"Open"_s);
      message << request.texts;
      break;
    case InstanceRequest::Kind::Action:
      message = method(u"ActivateAction"_s);
      message << request.texts.value(0) << QVariantList();
      break;
  }
  message << request.platformData;
  return message;
}

qint64 sizeInBus(const QStringList& texts) {
  qint64 size = 0;
  for (const QString& text : texts)
    size += text.toUtf8().size() + 8;
  return size;
}

}  // namespace

Result<HandOver> callBySocket(const InstanceRequest& request) {
  const QByteArray bytes = frame(request);
  if (bytes.size() > longestRequest)
    return failure(QString::fromUtf16(desktopErrorDomain), DesktopErrorTooLarge,
                   u"The request is larger than 256 MB."_s);
  QLocalSocket socket;
  socket.connectToServer(instanceSocketPath());
  if (!socket.waitForConnected(patience)) {
    if (nobodyListens(socket.error())) return HandOver::NoInstance;
    return noAnswer(socket.errorString());
  }
  if (!writeAll(socket, bytes)) return noAnswer(socket.errorString());
  while (socket.bytesAvailable() == 0)
    if (!socket.waitForReadyRead(patience)) return noAnswer(socket.errorString());
  return HandOver::HandedOver;
}

Result<HandOver> callByBus(const InstanceRequest& request) {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected() || !bus.interface()->isServiceRegistered(serviceName()))
    return HandOver::NoInstance;
  if (sizeInBus(request.texts) > longestBusRequest)
    return failure(
        QString::fromUtf16(desktopErrorDomain), DesktopErrorTooLarge,
        u"The request is too large for the session bus (64 MB), and the running Corvalis "
        u"has no local socket at %1."_s.arg(instanceSocketPath()));
  const QDBusMessage reply = bus.call(busCall(request), QDBus::Block, patience);
  if (reply.type() == QDBusMessage::ErrorMessage) return noAnswer(reply.errorMessage());
  return HandOver::HandedOver;
}

Result<bool> startByBus() {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return false;
  const QDBusReply<QStringList> known = bus.interface()->activatableServiceNames();
  if (!known.isValid() || !known.value().contains(serviceName())) return false;
  const QDBusReply<void> started = bus.interface()->startService(serviceName());
  if (started.isValid()) return true;
  return failure(QString::fromUtf16(desktopErrorDomain), DesktopErrorProgramFailed,
                 u"Corvalis could not be started: %1."_s.arg(started.error().message()));
}

}  // namespace desktop
