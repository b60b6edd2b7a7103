#pragma once

#include <QDBusVirtualObject>

#include "platform/desktop/ApplicationService.h"

namespace desktop {

/// The instance's object on the session bus, with the interface org.freedesktop.Application. Main
/// thread only.
class BusDoor : public QDBusVirtualObject {
 public:
  enum class Claim { Owned, OwnedByAnother, NoBus };

  explicit BusDoor(ApplicationReceiver& receiver) : receiver_(receiver) {}
  /// Gives the name back.
  ~BusDoor() override;

  /// Puts the object on the bus and asks for the program's name there.
  Claim claim();

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  bool deliver(const QDBusMessage& message);

  ApplicationReceiver& receiver_;
  bool registered_ = false;
  bool owned_ = false;
};

/// The object's path: the name with slashes (Desktop Entry Specification, D-Bus Activation).
QString instanceObjectPath();

}  // namespace desktop
