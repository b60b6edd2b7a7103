#include "platform/desktop/internal/BusDoor.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

const QString applicationInterface = u"org.freedesktop.Application"_s;

QString serviceName() {
  return QString::fromUtf16(applicationIdentifier);
}

/// A dictionary or list arrives undecoded; its values may be variants in variants.
QVariantMap mapOf(const QVariant& value) {
  return value.canConvert<QDBusArgument>() ? qdbus_cast<QVariantMap>(value.value<QDBusArgument>())
                                           : value.toMap();
}

QVariantList listOf(const QVariant& value) {
  return value.canConvert<QDBusArgument>() ? qdbus_cast<QVariantList>(value.value<QDBusArgument>())
                                           : value.toList();
}

}  // namespace

QString instanceObjectPath() {
  return u'/' + serviceName().replace(u'.', u'/');
}

BusDoor::~BusDoor() {
  auto bus = QDBusConnection::sessionBus();
  if (owned_) bus.unregisterService(serviceName());
  if (registered_) bus.unregisterObject(instanceObjectPath());
}

BusDoor::Claim BusDoor::claim() {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return Claim::NoBus;
  // The object comes before the name: calls that wait for the name are delivered at once.
  registered_ = bus.registerVirtualObject(instanceObjectPath(), this);
  owned_ = bus.registerService(serviceName());
  return owned_ ? Claim::Owned : Claim::OwnedByAnother;
}

QString BusDoor::introspect(const QString&) const {
  return uR"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="Open">
    <arg type="as" name="uris" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
  <method name="ActivateAction">
    <arg type="s" name="action_name" direction="in"/>
    <arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
</interface>
)"_s;
}

bool BusDoor::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  if (message.type() != QDBusMessage::MethodCallMessage) return false;
  if (!message.interface().isEmpty() && message.interface() != applicationInterface) return false;
  if (!deliver(message)) return false;
  if (message.isReplyRequired()) connection.send(message.createReply());
  return true;
}

/// False for a call that is none of the interface's: the bus answers it with an error.
bool BusDoor::deliver(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  const QString call = message.member() + u'(' + message.signature() + u')';
  if (call == u"Activate(a{sv})"_s) {
    receiver_.activate(mapOf(arguments[0]));
  } else if (call == u"Open(asa{sv})"_s) {
    receiver_.open(arguments[0].toStringList(), mapOf(arguments[1]));
  } else if (call == u"ActivateAction(sava{sv})"_s) {
    receiver_.activateAction(arguments[0].toString(), listOf(arguments[1]), mapOf(arguments[2]));
  } else {
    return false;
  }
  return true;
}

}  // namespace desktop
