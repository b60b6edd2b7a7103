#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <csignal>

#include "support/Wait.h"

using namespace Qt::StringLiterals;
using ::testing::UnorderedElementsAre;

namespace {

/// Starts of the program as processes of their own, with a runtime folder and a bus (or none) that
/// no other test shares.
class InstanceProcesses : public ::testing::Test {
 protected:
  InstanceProcesses() {
    environment_ = QProcessEnvironment::systemEnvironment();
    environment_.insert(u"XDG_RUNTIME_DIR"_s, folder_.path());
    environment_.insert(u"XDG_DATA_HOME"_s, folder_.path());
    withoutBus();
  }

  ~InstanceProcesses() override {
    for (const auto& process : processes_) {
      process->kill();
      process->waitForFinished();
    }
  }

  void withoutBus() { environment_.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nowhere"_s); }

  /// A session bus that starts the program on demand.
  void withBus() {
    QDir(folder_.path()).mkpath(u"dbus-1/services"_s);
    QFile service(folder_.filePath(u"dbus-1/services/com.maplebrook.corvalis.service"_s));
    ASSERT_TRUE(service.open(QIODevice::WriteOnly));
    service.write("[D-BUS Service]\nName=com.maplebrook.corvalis\nExec='" INSTANCE_PROGRAM
                  "' start\n");
    service.close();
    QProcess& bus = run(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
    ASSERT_TRUE(support::waitFor([&bus] { return bus.canReadLine(); }));
    environment_.insert(u"DBUS_SESSION_BUS_ADDRESS"_s,
                        QString::fromLatin1(bus.readLine().trimmed()));
  }

  QProcess& run(const QString& program, const QStringList& arguments) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment_);
    process->start(program, arguments);
    processes_.push_back(std::move(process));
    return *processes_.back();
  }

  QProcess& start(const QStringList& arguments) {
    return run(QStringLiteral(INSTANCE_PROGRAM), arguments);
  }

  /// What the process tells, once it is that many lines.
  static QStringList lines(QProcess& process, int count) {
    QByteArray text;
    EXPECT_TRUE(support::waitFor([&] {
      text += process.readAllStandardOutput();
      return text.count('\n') >= count;
    })) << text.constData();
    return QString::fromUtf8(text.trimmed()).split(u'\n');
  }

  QTemporaryDir folder_;
  QProcessEnvironment environment_;
  std::vector<std::unique_ptr<QProcess>> processes_;
};

}  // namespace

TEST_F(InstanceProcesses, StartsAtOneMomentEndWithOneInstanceThatHasAllRequests) {
  for (const bool bus : {false, true}) {
    SCOPED_TRACE(bus ? "with a bus" : "without a bus");
    if (bus) withBus();
    QList<QProcess*> starts;
    for (int i = 0; i < 4; ++i)
      starts << &start({u"start"_s, u"corvxurl://host/%1"_s.arg(i)});
    QProcess* instance = nullptr;
    QStringList told;
    for (QProcess* process : starts) {
      const QStringList first = lines(*process, 1);
      if (first[0] != u"instance"_s) {
        EXPECT_EQ(first, QStringList{u"handed over"_s});
        continue;
      }
      EXPECT_EQ(instance, nullptr) << "two instances";
      instance = process;
      told = first.mid(1);
    }
    ASSERT_NE(instance, nullptr);
    while (told.size() < 4)
      told += lines(*instance, 1);
    EXPECT_THAT(told, UnorderedElementsAre(
                          u"open 17 corvxurl://host/0 -"_s, u"open 17 corvxurl://host/1 -"_s,
                          u"open 17 corvxurl://host/2 -"_s, u"open 17 corvxurl://host/3 -"_s));
    instance->kill();
    instance->waitForFinished();
  }
}

TEST_F(InstanceProcesses, CrashedInstanceIsSucceeded) {
  QProcess& first = start({u"start"_s});
  EXPECT_EQ(lines(first, 1), QStringList{u"instance"_s});
  first.kill();
  first.waitForFinished();
  EXPECT_EQ(lines(start({u"send"_s, u"10"_s}), 1), QStringList{u"no instance"_s});
  QProcess& second = start({u"start"_s});
  EXPECT_EQ(lines(second, 1), QStringList{u"instance"_s});
  EXPECT_EQ(lines(start({u"start"_s}), 1), QStringList{u"handed over"_s});
  EXPECT_EQ(lines(second, 1), QStringList{u"activate"_s});
}

/// Its door is closed, its right not yet given up.
TEST_F(InstanceProcesses, RequestBesideAnEndingInstanceIsNotLost) {
  QLockFile right(folder_.filePath(u"com.maplebrook.corvalis.lock"_s));
  right.setStaleLockTime(0);
  ASSERT_TRUE(right.tryLock(0));
  QProcess& next = start({u"start"_s, u"corvxurl://host/kept"_s});
  EXPECT_FALSE(
      support::waitFor([&] { return next.canReadLine(); }, std::chrono::milliseconds(200)));
  right.unlock();
  EXPECT_EQ(lines(next, 2), (QStringList{u"instance"_s, u"open 20 corvxurl://host/kept -"_s}));
}

TEST_F(InstanceProcesses, RequestBeyondEveryBusLimitArrivesAndOneBeyondOursIsRefused) {
  withBus();
  QProcess& instance = start({u"start"_s});
  EXPECT_EQ(lines(instance, 1), QStringList{u"instance"_s});
  EXPECT_EQ(lines(start({u"send"_s, u"200000000"_s}), 1), QStringList{u"handed over"_s});
  EXPECT_EQ(lines(instance, 1), QStringList{u"open 200000000 xxxxxxxxxxxxxxxx-end t"_s});
  EXPECT_EQ(lines(start({u"send"_s, u"270000000"_s}), 1),
            QStringList{u"error The request is larger than 256 MB."_s});
}

TEST_F(InstanceProcesses, RequestStartsTheProgramOnDemand) {
  withBus();
  EXPECT_EQ(lines(start({u"demand"_s, u"corvxurl://host/"_s}), 1), QStringList{u"handed over"_s});
  EXPECT_EQ(lines(start({u"start"_s}), 1), QStringList{u"handed over"_s});
  // The bus started it, so it is none of our processes: it is asked to end.
  const QString address = environment_.value(u"DBUS_SESSION_BUS_ADDRESS"_s);
  auto bus = QDBusConnection::connectToBus(address, u"on demand"_s);
  auto quit =
      QDBusMessage::createMethodCall(u"com.maplebrook.corvalis"_s, u"/com/maplebrook/corvalis"_s,
                                     u"org.freedesktop.Application"_s, u"ActivateAction"_s);
  quit << u"quit"_s << QVariantList() << QVariantMap();
  const QDBusPendingCall call = bus.asyncCall(quit);
  EXPECT_TRUE(support::waitFor([&call] { return call.isFinished(); }));
  EXPECT_FALSE(call.isError()) << qPrintable(call.error().message());
  EXPECT_TRUE(support::waitFor(
      [&bus] { return !bus.interface()->isServiceRegistered(u"com.maplebrook.corvalis"_s); }));
  QDBusConnection::disconnectFromBus(u"on demand"_s);
}
