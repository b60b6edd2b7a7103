#pragma once

#include <QJsonObject>
#include <QString>
#include <chrono>
#include <memory>

#include "platform/base/Error.h"

namespace browsers {

/// The path of the running program's socket for the native hosts of our add-on: in the user's
/// runtime folder.
QString addOnSocketPath();

/// The running program's door for the browsers that have our add-on: each is connected by a native
/// host for as long as it runs. The browser that had the focus last is asked.
///
/// Made on the main thread, where it listens; asking is done on other threads.
class AddOnDoor {
 public:
  enum class Question { Address, Page };

  /// Closed until `listen`; until then no browser is connected.
  static std::shared_ptr<AddOnDoor> create();
  ~AddOnDoor();
  AddOnDoor(const AddOnDoor&) = delete;
  AddOnDoor& operator=(const AddOnDoor&) = delete;

  /// Replaces a socket that a crashed instance has left: the caller is the one running instance.
  /// Main thread.
  MaybeError listen();

  /// Any thread.
  bool hasBrowser() const;

  /// The add-on's answer about the active tab: "address", and for a page also "document", "styles"
  /// and "frames" (texts). The add-on's own reason when it cannot read the page. Blocks; not on the
  /// main thread.
  Result<QJsonObject> ask(Question question, std::chrono::milliseconds limit);

 private:
  class Server;
  struct Exchange;
  AddOnDoor();

  std::shared_ptr<Exchange> exchange_;
  std::unique_ptr<Server> server_;
};

}  // namespace browsers
