#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <functional>
#include <optional>

/// A service on the test's own session bus, on a connection of its own unless one is given.
class BusFake : public QDBusVirtualObject {
 public:
  /// The values of the reply; none: the call fails.
  using Answer = std::function<std::optional<QVariantList>(const QDBusMessage&)>;

  BusFake(const QString& service, const QString& path, Answer answer);
  BusFake(const QDBusConnection& bus, const QString& service, const QString& path, Answer answer);
  ~BusFake() override;

  /// The calls so far, in their order.
  const QList<QDBusMessage>& calls() const { return calls_; }
  QList<QDBusMessage> callsOf(const QString& method) const;

  void emitSignal(const QString& path, const QString& interface, const QString& name,
                  const QVariantList& values);

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  QDBusConnection bus_;
  QString service_;
  QString path_;
  Answer answer_;
  QList<QDBusMessage> calls_;
};
