#include "BusFake.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

BusFake::BusFake(const QString& service, const QString& path, Answer answer)
    : BusFake(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"fakes"_s), service, path,
              std::move(answer)) {}

BusFake::BusFake(const QDBusConnection& bus, const QString& service, const QString& path,
                 Answer answer)
    : bus_(bus), service_(service), path_(path), answer_(std::move(answer)) {
  EXPECT_TRUE(bus_.registerVirtualObject(path_, this, QDBusConnection::SubPath));
  EXPECT_TRUE(bus_.registerService(service_)) << qPrintable(service);
}

BusFake::~BusFake() {
  bus_.unregisterService(service_);
  bus_.unregisterObject(path_);
}

QList<QDBusMessage> BusFake::callsOf(const QString& method) const {
  QList<QDBusMessage> found;
  for (const QDBusMessage& call : calls_)
    if (call.member() == method) found << call;
  return found;
}

void BusFake::emitSignal(const QString& path, const QString& interface, const QString& name,
                         const QVariantList& values) {
  auto signal = QDBusMessage::createSignal(path, interface, name);
  signal.setArguments(values);
  EXPECT_TRUE(bus_.send(signal));
}

bool BusFake::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  calls_ << message;
  const auto values = answer_(message);
  if (!values) return false;
  connection.send(message.createReply(*values));
  return true;
}
