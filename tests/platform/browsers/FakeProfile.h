#pragma once

#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QSysInfo>

/// A profile folder of Chromium in the user's own place, held by this process: a browser as far as
/// its files tell.
class FakeProfile {
 public:
  FakeProfile() {
    QDir().mkpath(folder());
    lock(QSysInfo::machineHostName(), ::getpid());
  }
  ~FakeProfile() { QDir(folder()).removeRecursively(); }

  static QString folder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/chromium");
  }
  void lock(const QString& host, qint64 process) {
    QFile::remove(folder() + QStringLiteral("/SingletonLock"));
    const QString target = QStringLiteral("%1-%2").arg(host).arg(process);
    QFile::link(target, folder() + QStringLiteral("/SingletonLock"));
  }
  void setEndpoint(const QByteArray& contents) {
    QFile file(folder() + QStringLiteral("/DevToolsActivePort"));
    if (file.open(QIODevice::WriteOnly)) file.write(contents);
  }
  void setEndpoint(quint16 port) {
    setEndpoint(QByteArray::number(port) + "\n/devtools/browser/0a1b2c3d-test");
  }
};
