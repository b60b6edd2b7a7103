#include "platform/browsers/AddOnDoor.h"

#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QStandardPaths>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/base/Log.h"
#include "platform/browsers/BrowserError.h"
#include "platform/browsers/ChunkedText.h"
#include "platform/browsers/MessageFrame.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

/// A user has a handful of browsers; more peers than this are none.
constexpr qsizetype mostBrowsers = 16;

}  // namespace

QString addOnSocketPath() {
  return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
         u"/com.maplebrook.corvalis.browser-addon.socket"_s;
}

/// What the main queue and the thread that asks share.
struct AddOnDoor::Exchange {
  std::mutex askMutex;  // one question at a time
  std::mutex mutex;
  std::condition_variable answered;
  int identifier = 0;
  std::optional<Result<QString>> answer;
  std::atomic<qsizetype> browsers = 0;

  /// Answers to an earlier question are late and dropped.
  void conclude(int answeredIdentifier, Result<QString> text) {
    std::lock_guard lock(mutex);
    if (answeredIdentifier != identifier || answer) return;
    answer = std::move(text);
    answered.notify_all();
  }
  bool awaits(int askedIdentifier) {
    std::lock_guard lock(mutex);
    return askedIdentifier == identifier && !answer;
  }
};

/// Main thread only.
class AddOnDoor::Server : public QObject {
 public:
  explicit Server(std::shared_ptr<Exchange> exchange) : exchange_(std::move(exchange)) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, [this] { accept(); });
  }

  ~Server() override {
    // The sockets report their end while they are destroyed.
    for (QLocalSocket* socket : std::exchange(browsers_, {}))
      socket->disconnect(this);
    exchange_->browsers = 0;
  }

  MaybeError listen() {
    QLocalServer::removeServer(addOnSocketPath());
    if (server_.listen(addOnSocketPath())) return std::nullopt;
    return browserFailure(File, u"The program cannot listen on %1: %2"_s.arg(addOnSocketPath(),
                                                                             server_.errorString()))
        .value();
  }

  void send(int identifier, const QByteArray& message) {
    if (browsers_.isEmpty())
      return exchange_->conclude(identifier,
                                 browserFailure(NoEndpoint, u"No browser is connected."_s));
    asked_ = browsers_.first();
    askedIdentifier_ = identifier;
    asked_->write(message);
  }

 private:
  struct Peer {
    MessageReader reader;
    ChunkedText answer;
  };

  void accept() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
      if (browsers_.size() >= mostBrowsers) {
        delete socket;
        continue;
      }
      const auto peer = std::make_shared<Peer>();
      browsers_.prepend(socket);
      exchange_->browsers = browsers_.size();
      connect(socket, &QLocalSocket::readyRead, this,
              [this, socket, peer] { read(socket, *peer); });
      connect(socket, &QLocalSocket::disconnected, this, [this, socket] { drop(socket); });
    }
  }

  void drop(QLocalSocket* socket) {
    browsers_.removeAll(socket);
    exchange_->browsers = browsers_.size();
    if (asked_ == socket) {
      asked_ = nullptr;
      exchange_->conclude(askedIdentifier_, browserFailure(NoAnswer, u"The browser has ended."_s));
    }
    socket->deleteLater();
  }

  void read(QLocalSocket* socket, Peer& peer) {
    peer.reader.append(socket->readAll());
    while (socket->state() == QLocalSocket::ConnectedState) {
      const auto message = peer.reader.next();
      if (message && !*message) return;
      if (message) take(socket, peer, **message);
      if (message) continue;
      logLine(u"A browser's native host was refused: "_s + message.error().localizedDescription);
      return socket->abort();
    }
  }

  void take(QLocalSocket* socket, Peer& peer, const QJsonObject& message) {
    const QString kind = message.value(u"kind"_s).toString();
    if (kind == u"focused" && browsers_.removeAll(socket) > 0) return browsers_.prepend(socket);
    const int identifier = message.value(u"id"_s).toInt(-1);
    if (kind != u"answer" || socket != asked_ || !exchange_->awaits(identifier)) return;
    auto text = peer.answer.add(message);
    if (!text) return exchange_->conclude(identifier, tl::unexpected(text.error()));
    if (*text) exchange_->conclude(identifier, std::move(**text));
  }

  const std::shared_ptr<Exchange> exchange_;
  QLocalServer server_;
  /// The one that had the focus last comes first.
  QList<QLocalSocket*> browsers_;
  QLocalSocket* asked_ = nullptr;
  int askedIdentifier_ = 0;
};

AddOnDoor::AddOnDoor()
    : exchange_(std::make_shared<Exchange>()), server_(std::make_unique<Server>(exchange_)) {}

/// The thread that has asked last may be the last one that holds the door.
AddOnDoor::~AddOnDoor() {
  dispatch::mainSync([this] { server_.reset(); });
}

std::shared_ptr<AddOnDoor> AddOnDoor::create() {
  return std::shared_ptr<AddOnDoor>(new AddOnDoor);
}

MaybeError AddOnDoor::listen() {
  return server_->listen();
}

bool AddOnDoor::hasBrowser() const {
  return exchange_->browsers > 0;
}

Result<QJsonObject> AddOnDoor::ask(Question question, std::chrono::milliseconds limit) {
  const auto exchange = exchange_;
  std::lock_guard oneAtATime(exchange->askMutex);
  std::unique_lock lock(exchange->mutex);
  exchange->answer.reset();
  const int identifier = ++exchange->identifier;
  const QByteArray message =
      framed({{u"kind"_s, u"query"_s},
              {u"id"_s, identifier},
              {u"what"_s, question == Question::Page ? u"page"_s : u"address"_s}});
  dispatch::mainAsync([server = QPointer<Server>(server_.get()), identifier, message] {
    if (server) server->send(identifier, message);
  });
  exchange->answered.wait_for(lock, limit, [&] { return exchange->answer.has_value(); });
  const Result<QString> text =
      exchange->answer.value_or(browserFailure(NoAnswer, u"The browser add-on does not answer."_s));
  exchange->answer = text;
  lock.unlock();
  if (!text) return tl::unexpected(text.error());
  const QJsonObject answer = QJsonDocument::fromJson(text->toUtf8()).object();
  const QString problem = answer.value(u"error"_s).toString();
  if (!problem.isEmpty()) return browserFailure(NoPage, problem);
  return answer;
}

}  // namespace browsers
