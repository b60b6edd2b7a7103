#include "AccessibleProgram.h"

#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 5000;  // milliseconds

const QString accessible = u"org.a11y.atspi.Accessible"_s;
const QString rootPath = u"/org/a11y/atspi/accessible/root"_s;

/// AT-SPI's AtspiStateType: the object is on the screen.
constexpr uint showingState = 1U << 25;

QString uniqueConnectionName() {
  static int number = 0;
  return u"accessibility %1"_s.arg(++number);
}

/// The accessibility bus is started by the question where it is.
QDBusConnection accessibilityBus(const QDBusConnection& sessionBus) {
  const auto question = QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s,
                                                       u"org.a11y.Bus"_s, u"GetAddress"_s);
  const QDBusMessage reply = sessionBus.call(question);
  EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << qPrintable(reply.errorMessage());
  return QDBusConnection::connectToBus(reply.arguments().value(0).toString(),
                                       uniqueConnectionName());
}

}  // namespace

AccessibleProgram::AccessibleProgram(const QDBusConnection& sessionBus)
    : bus_(accessibilityBus(sessionBus)) {}

AccessibleProgram::~AccessibleProgram() {
  QDBusConnection::disconnectFromBus(bus_.name());
}

/// The first value of the reply; invalid for an object that has gone.
QVariant AccessibleProgram::call(const Node& node, const QString& interface, const QString& method,
                                 const QVariantList& arguments) const {
  auto message = QDBusMessage::createMethodCall(node.service, node.path, interface, method);
  message.setArguments(arguments);
  return bus_.call(message, QDBus::Block, patience).arguments().value(0);
}

QList<AccessibleProgram::Node> AccessibleProgram::children(const Node& node) const {
  QList<Node> nodes;
  const QVariant reply = call(node, accessible, u"GetChildren"_s);
  if (!reply.canConvert<QDBusArgument>()) return nodes;
  const auto list = reply.value<QDBusArgument>();
  list.beginArray();
  while (!list.atEnd()) {
    QString service;
    QDBusObjectPath path;
    list.beginStructure();
    list >> service >> path;
    list.endStructure();
    nodes << Node{service, path.path()};
  }
  list.endArray();
  return nodes;
}

QString AccessibleProgram::name(const Node& node) const {
  const QVariant value =
      call(node, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {accessible, u"Name"_s});
  return value.value<QDBusVariant>().variant().toString();
}

bool AccessibleProgram::isShown(const Node& node) const {
  const QVariant reply = call(node, accessible, u"GetState"_s);
  const auto states = qdbus_cast<QList<uint>>(reply);
  return !states.isEmpty() && (states.first() & showingState);
}

bool AccessibleProgram::walk(const Node& node, const Visit& visit) const {
  if (!isShown(node)) return false;
  const Facts facts{call(node, accessible, u"GetRoleName"_s).toString(), name(node)};
  if (visit(node, facts)) return true;
  for (const Node& child : children(node))
    if (walk(child, visit)) return true;
  return false;
}

std::optional<AccessibleProgram::Node> AccessibleProgram::application() const {
  for (const Node& program : children({u"org.a11y.atspi.Registry"_s, rootPath}))
    if (name(program) == u"corvalis"_s) return program;
  return std::nullopt;
}

std::optional<AccessibleProgram::Node> AccessibleProgram::find(const QString& role,
                                                               const QString& name) const {
  std::optional<Node> found;
  const auto program = application();
  if (!program) return found;
  walk(*program, [&](const Node& node, const Facts& facts) {
    if (facts.role == role && facts.name == name) found = node;
    return found.has_value();
  });
  return found;
}

QStringList AccessibleProgram::names(const QString& role) const {
  QStringList names;
  const auto program = application();
  if (!program) return names;
  walk(*program, [&](const Node&, const Facts& facts) {
    if (facts.role == role) names << facts.name;
    return false;
  });
  return names;
}

bool AccessibleProgram::has(const QString& role, const QString& name) const {
  return find(role, name).has_value();
}

bool AccessibleProgram::press(const QString& role, const QString& name) const {
  const auto node = find(role, name);
  return node && call(*node, u"org.a11y.atspi.Action"_s, u"DoAction"_s, {0}).toBool();
}

QRect AccessibleProgram::place(const QString& role, const QString& name) const {
  const auto node = find(role, name);
  if (!node) return {};
  constexpr uint onScreen = 0;
  const QVariant reply = call(*node, u"org.a11y.atspi.Component"_s, u"GetExtents"_s, {onScreen});
  int x = 0, y = 0, width = 0, height = 0;
  const auto extents = reply.value<QDBusArgument>();
  extents.beginStructure();
  extents >> x >> y >> width >> height;
  extents.endStructure();
  return {x, y, width, height};
}
