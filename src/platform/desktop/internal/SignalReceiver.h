#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace desktop {

/// Calls a function for a signal of the session bus, on the thread that made it, until it is
/// destroyed.
class SignalReceiver : public QObject {
  Q_OBJECT

 public:
  using Receive = std::function<void(const QDBusMessage&)>;

  /// An empty `service` or `path` stands for any.
  SignalReceiver(const QString& service, const QString& path, const QString& interface,
                 const QString& name, Receive receive)
      : receive_(std::move(receive)) {
    QDBusConnection::sessionBus().connect(service, path, interface, name, this,
                                          SLOT(handle(QDBusMessage)));
  }

 private:
  Q_SLOT void handle(const QDBusMessage& message) { receive_(message); }

  Receive receive_;
};

}  // namespace desktop
