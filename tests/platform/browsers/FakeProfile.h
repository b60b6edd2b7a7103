#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>

/// A profile folder of Chromium in the user's own place, held by a process of that name: a browser
/// as far as the system tells.
class FakeProfile {
 public:
  FakeProfile() {
    QDir().mkpath(folder());
    const QString program = folder() + QStringLiteral("/chromium");
    QFile::copy(QFileInfo(QStringLiteral("/bin/sleep")).canonicalFilePath(), program);
    process_.start(program, {QStringLiteral("infinity")});
    process_.waitForStarted();
    lock(QSysInfo::machineHostName(), process_.processId());
  }
  ~FakeProfile() {
    process_.kill();
    process_.waitForFinished();
    QDir(folder()).removeRecursively();
  }

  static QString folder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/chromium");
  }
  qint64 process() const { return process_.processId(); }
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

 private:
  QProcess process_;
};
