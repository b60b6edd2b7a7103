#include "platform/browsers/NativeHost.h"

#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <utility>

#include "platform/base/Log.h"
#include "platform/browsers/AddOn.h"
#include "platform/browsers/AddOnDoor.h"
#include "platform/browsers/BrowserError.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

constexpr qsizetype pieceSize = 1024 * 1024;

/// What a host may be asked to hand over: never a plain address, let alone one of a local file.
bool isCaptureRequest(const QString& text) {
  return text.startsWith(u"corvxurl://"_s) || text.startsWith(u"corvxurls://"_s);
}

}  // namespace

bool isOurAddOn(const QStringList& arguments) {
  const QString origin = u"chrome-extension://"_s + QString::fromUtf16(chromiumAddOn) + u'/';
  return arguments.value(0) == origin || (arguments.value(0).endsWith(u".json"_s) &&
                                          arguments.value(1) == QString::fromUtf16(firefoxAddOn));
}

NativeHost::NativeHost(int input, int output, Deliver deliver, Ended ended)
    : output_(output),
      deliver_(std::move(deliver)),
      ended_(std::move(ended)),
      input_(input, QSocketNotifier::Read) {
  QObject::connect(&input_, &QSocketNotifier::activated, &input_, [this] { read(); });
  QObject::connect(&program_, &QLocalSocket::readyRead, &program_, [this] { readFromProgram(); });
  runtimeFolder_.addPath(QFileInfo(addOnSocketPath()).path());
  QObject::connect(&runtimeFolder_, &QFileSystemWatcher::directoryChanged, &program_,
                   [this] { connectToProgram(); });
  connectToProgram();
}

void NativeHost::read() {
  QByteArray bytes(pieceSize, Qt::Uninitialized);
  const auto count = ::read(static_cast<int>(input_.socket()), bytes.data(), pieceSize);
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count <= 0) return end(fromBrowser_.isAtBoundary() ? 0 : 1);
  bytes.truncate(count);
  fromBrowser_.append(bytes);
  takeMessages();
}

void NativeHost::takeMessages() {
  while (ended_) {
    const auto message = fromBrowser_.next();
    if (!message) {
      logLine(u"The browser sent no message: "_s + message.error().localizedDescription);
      return end(1);
    }
    if (!*message) return;
    take(**message);
  }
}

void NativeHost::take(const QJsonObject& message) {
  const QString kind = message.value(u"kind"_s).toString();
  if (kind == u"request") return takeRequest(message);
  const bool isForProgram = kind == u"answer" || kind == u"focused";
  if (isForProgram && program_.state() == QLocalSocket::ConnectedState)
    program_.write(framed(message));
}

void NativeHost::takeRequest(const QJsonObject& chunk) {
  const int identifier = chunk.value(u"id"_s).toInt(-1);
  auto text = request_.add(chunk);
  if (!text) return report(identifier, text.error());
  if (!*text) return;
  if (!isCaptureRequest(**text))
    return report(identifier, browserFailure(BadMessage, u"This is no capture request."_s).value());
  dispatch::globalAsync(dispatch::Priority::High,
                        [this, alive = std::weak_ptr(alive_), deliver = deliver_, identifier,
                         request = std::move(**text)] {
                          const MaybeError error = deliver(request);
                          dispatch::mainAsync([this, alive, identifier, error] {
                            if (!alive.expired()) report(identifier, error);
                          });
                        });
}

void NativeHost::report(int identifier, const MaybeError& error) {
  QJsonObject message{
      {u"kind"_s, u"result"_s}, {u"id"_s, identifier}, {u"ok"_s, !error.has_value()}};
  if (error) message.insert(u"reason"_s, error->localizedDescription);
  send(message);
}

void NativeHost::send(const QJsonObject& message) const {
  const QByteArray bytes = framed(message);
  for (qsizetype sent = 0; sent < bytes.size();) {
    const auto count = ::write(output_, bytes.constData() + sent, bytes.size() - sent);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;  // the browser is gone; its end of our input tells
    sent += count;
  }
}

void NativeHost::end(int status) {
  input_.setEnabled(false);
  if (const Ended ended = std::exchange(ended_, nullptr)) ended(status);
}

void NativeHost::connectToProgram() {
  if (program_.state() != QLocalSocket::UnconnectedState || !QFile::exists(addOnSocketPath()))
    return;
  fromProgram_ = MessageReader(longestMessageOut);
  program_.connectToServer(addOnSocketPath());
}

/// Only questions reach the browser, whatever else listens on the socket's path.
void NativeHost::readFromProgram() {
  fromProgram_.append(program_.readAll());
  while (true) {
    const auto message = fromProgram_.next();
    if (!message) return program_.abort();
    if (!*message) return;
    if ((*message)->value(u"kind"_s).toString() == u"query") send(**message);
  }
}

}  // namespace browsers
