#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include "platform/dropbox/TokenStore.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

/// A private session bus with an unlocked key ring on it; both end with the object.
class KeyRing {
 public:
  bool start() {
    // They must not outlive a test that crashes.
    for (QProcess* process : {&daemon_, &bus_})
      process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    bus_.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
    if (!bus_.waitForStarted() || !bus_.waitForReadyRead()) return false;
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus_.readLine().trimmed());
    daemon_.start(u"gnome-keyring-daemon"_s,
                  {u"--foreground"_s, u"--unlock"_s, u"--components=secrets"_s});
    if (!daemon_.waitForStarted()) return false;
    daemon_.write("password\n");
    daemon_.closeWriteChannel();
    const auto connection = QDBusConnection::connectToBus(
        qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), u"keyring"_s);
    return support::waitFor([&connection] {
      return connection.interface()->isServiceRegistered(u"org.freedesktop.secrets"_s).value();
    });
  }
  ~KeyRing() {
    for (QProcess* process : {&daemon_, &bus_}) {
      process->terminate();
      if (!process->waitForFinished(5000)) process->kill();
    }
  }

 private:
  QProcess bus_;
  QProcess daemon_;
};

std::optional<dropbox::Token> read(dropbox::TokenStore& store) {
  std::optional<std::optional<dropbox::Token>> token;
  store.read([&token](const auto& given) { token = given; });
  EXPECT_FALSE(token) << "the answer came before the call returned";
  EXPECT_TRUE(support::waitFor([&token] { return token.has_value(); }));
  return token.value_or(std::nullopt);
}

template <class Operation>
MaybeError ended(Operation operation) {
  std::optional<MaybeError> result;
  operation([&result](const MaybeError& error) { result = error; });
  EXPECT_TRUE(support::waitFor([&result] { return result.has_value(); }));
  return result.value_or(Error{});
}

TEST(KeyRingTest, TheTokenLivesInTheKeyRingAndNowhereElse) {
  if (QStandardPaths::findExecutable(u"gnome-keyring-daemon"_s).isEmpty())
    GTEST_SKIP() << "gnome-keyring is not installed";
  KeyRing ring;
  ASSERT_TRUE(ring.start());
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
  const QString path = folder + u"/dropbox-token"_s;
  const auto store = dropbox::makeStandardTokenStore(u"k3r8tq0vz5mha2x"_s);
  EXPECT_FALSE(read(*store));

  // A token that an earlier run had to leave in the file moves.
  const dropbox::Token token{u"access"_s,
                             u"refresh “ü”"_s,
                             QDateTime::fromSecsSinceEpoch(1'900'000'000, Qt::UTC),
                             u"dbid:1"_s,
                             {}};
  QDir().mkpath(folder);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(token.toStored());
  file.close();
  EXPECT_EQ(read(*store), token);
  EXPECT_FALSE(ended([&](auto completion) { store->write(token, completion); }));
  EXPECT_FALSE(QFile::exists(path));
  EXPECT_EQ(read(*dropbox::makeStandardTokenStore(u"k3r8tq0vz5mha2x"_s)), token);

  // A removal that follows a writing at once must win.
  store->write(token, [](const MaybeError&) {});
  EXPECT_FALSE(ended([&](auto completion) { store->remove(completion); }));
  EXPECT_FALSE(read(*store));
}

}  // namespace
