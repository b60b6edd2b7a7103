#include "platform/desktop/internal/SocketDoor.h"

#include <QLocalSocket>
#include <QPointer>
#include <QStandardPaths>
#include <chrono>

#include "platform/base/Log.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dispatch/Timer.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// A peer that sends nothing for this long is dead.
constexpr std::chrono::seconds longestSilence{30};

}  // namespace

QString runtimeFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

QString instanceSocketPath() {
  return runtimeFolder() + u'/' + QString::fromUtf16(applicationIdentifier) + u".socket"_s;
}

/// One peer: reads a frame, has it decoded away from the main thread, delivers it and answers with
/// one byte. It is a child of its socket, which ends with the connection or the door.
class SocketDoor::Visit : public QObject {
 public:
  Visit(QLocalSocket* socket, std::weak_ptr<Deliver> deliver)
      : QObject(socket), socket_(socket), deliver_(std::move(deliver)) {
    connect(socket_, &QLocalSocket::readyRead, this, [this] { read(); });
    connect(socket_, &QLocalSocket::disconnected, socket_, &QObject::deleteLater);
    awaitMore();
    read();
  }

 private:
  void awaitMore() {
    silence_ = dispatch::Timer::after(longestSilence, [this] { socket_->abort(); });
  }

  void read() {
    if (finished_) return socket_->abort();
    bytes_ += socket_->readAll();
    awaitMore();
    if (bytes_.size() < frameHeaderSize) return;
    const quint64 length = frameBodyLength(bytes_);
    if (length > static_cast<quint64>(longestRequest)) return refuse(u"it is too large"_s);
    const auto whole = static_cast<qsizetype>(length) + frameHeaderSize;
    if (bytes_.size() == whole) return decode();
    if (bytes_.size() > whole) return refuse(u"it is longer than it says"_s);
    bytes_.reserve(whole);
  }

  void refuse(const QString& reason) {
    logLine(u"A request from another start of the program was refused: %1."_s.arg(reason));
    socket_->abort();
  }

  void decode() {
    finished_ = true;
    silence_.reset();
    auto body = std::make_shared<QByteArray>(std::exchange(bytes_, {}));
    QPointer<Visit> visit(this);
    dispatch::globalAsync(dispatch::Priority::High, [visit, body, deliver = deliver_] {
      const auto view = QByteArray::fromRawData(body->constData() + frameHeaderSize,
                                                body->size() - frameHeaderSize);
      auto request = std::make_shared<std::optional<InstanceRequest>>(requestFromBody(view));
      dispatch::mainAsync([visit, request, deliver] { conclude(visit, *request, deliver); });
    });
  }

  /// A request that has arrived whole counts, also when its sender is gone by now.
  static void conclude(const QPointer<Visit>& visit, const std::optional<InstanceRequest>& request,
                       const std::weak_ptr<Deliver>& deliver) {
    const auto receiver = deliver.lock();
    if (!receiver) return;
    if (!request && visit) return visit->refuse(u"it is damaged"_s);
    if (request) (*receiver)(*request);
    if (!visit) return;
    visit->socket_->write("\x01", 1);
    visit->socket_->disconnectFromServer();
  }

  QLocalSocket* socket_;
  std::weak_ptr<Deliver> deliver_;
  QByteArray bytes_;
  bool finished_ = false;
  std::unique_ptr<dispatch::Timer> silence_;
};

SocketDoor::SocketDoor(Deliver deliver) : deliver_(std::make_shared<Deliver>(std::move(deliver))) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { accept(); });
}

SocketDoor::~SocketDoor() = default;

MaybeError SocketDoor::listen() {
  QLocalServer::removeServer(instanceSocketPath());
  if (server_.listen(instanceSocketPath())) return std::nullopt;
  return desktopError(DesktopErrorUnavailable, u"The program cannot listen on %1: %2"_s.arg(
                                                   instanceSocketPath(), server_.errorString()));
}

void SocketDoor::accept() {
  while (QLocalSocket* socket = server_.nextPendingConnection())
    new Visit(socket, deliver_);
}

}  // namespace desktop
