#pragma once

#include <QLocalServer>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/desktop/internal/RequestFrame.h"

namespace desktop {

/// The user's own folder for sockets and locks.
QString runtimeFolder();

/// The path of the instance's socket.
QString instanceSocketPath();

/// Takes requests from a local socket that only the user can reach. Main thread only.
class SocketDoor {
 public:
  using Deliver = std::function<void(const InstanceRequest&)>;

  /// `deliver` is called on the main thread, never after the destruction.
  explicit SocketDoor(Deliver deliver);
  ~SocketDoor();
  SocketDoor(const SocketDoor&) = delete;
  SocketDoor& operator=(const SocketDoor&) = delete;

  /// Replaces a socket that a crashed instance has left: the caller holds the right to be the
  /// instance.
  MaybeError listen();

 private:
  class Visit;
  void accept();

  std::shared_ptr<Deliver> deliver_;
  QLocalServer server_;
};

}  // namespace desktop
