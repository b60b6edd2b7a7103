#pragma once

#include <QFileSystemWatcher>
#include <QJsonObject>
#include <QLocalSocket>
#include <QSocketNotifier>
#include <QStringList>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/browsers/ChunkedText.h"
#include "platform/browsers/MessageFrame.h"

namespace browsers {

/// Whether a browser has started the native host for our own add-on. The arguments are those that
/// browsers give: Chromium's the extension's origin, Firefox's the manifest's path and the add-on's
/// identifier.
bool isOurAddOn(const QStringList& arguments);

/// The native-messaging host of our add-on: takes capture requests from the browser and relays the
/// running program's questions about the active tab and their answers. It writes no file, runs
/// nothing and interprets no page. Main thread only.
///
/// From the add-on: {kind "request", id, seq, total, text}, {kind "answer", id, seq, total, text},
/// {kind "focused"}. To the add-on: {kind "result", id, ok, reason}, {kind "query", id, what}.
class NativeHost {
 public:
  /// Gives one capture request to the running program. Called on a pool thread; may block.
  using Deliver = std::function<MaybeError(const QString& request)>;
  /// Called once, when the browser has closed its end (status 0) or sent what is no message (1).
  using Ended = std::function<void(int status)>;

  /// The descriptors stay the caller's.
  NativeHost(int input, int output, Deliver deliver, Ended ended);
  NativeHost(const NativeHost&) = delete;
  NativeHost& operator=(const NativeHost&) = delete;

 private:
  void read();
  void takeMessages();
  void take(const QJsonObject& message);
  void takeRequest(const QJsonObject& chunk);
  void report(int identifier, const MaybeError& error);
  void send(const QJsonObject& message) const;
  void end(int status);

  void connectToProgram();
  void readFromProgram();

  const int output_;
  const Deliver deliver_;
  Ended ended_;
  MessageReader fromBrowser_;
  ChunkedText request_;

  QLocalSocket program_;
  MessageReader fromProgram_{longestMessageOut};
  /// Tells when the program opens its door.
  QFileSystemWatcher runtimeFolder_;
  QSocketNotifier input_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace browsers
