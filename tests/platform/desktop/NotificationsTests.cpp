#include <gtest/gtest.h>

#include <QDBusArgument>

#include "BusFake.h"
#include "platform/desktop/Notifications.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;

class RecordedFileManager : public desktop::FileManager {
 public:
  void reveal(const QString& path, Completion) override { shown << path; }
  QStringList shown;
};

class RecordedSounds : public desktop::SoundPlayer {
 public:
  void play(const QString& name) override { played << name; }
  QStringList played;
};

class NotificationServer {
 public:
  explicit NotificationServer(const QStringList& capabilities)
      : fake(service, path, [=](const QDBusMessage& call) -> std::optional<QVariantList> {
          if (call.member() == u"GetCapabilities"_s) return QVariantList{capabilities};
          return QVariantList{7U};
        }) {}

  /// The values of the only notification so far.
  QVariantList notification() {
    EXPECT_TRUE(support::waitFor([this] { return !fake.callsOf(u"Notify"_s).isEmpty(); }));
    const auto calls = fake.callsOf(u"Notify"_s);
    EXPECT_EQ(calls.size(), 1);
    return calls.value(0).arguments();
  }

  static QVariantMap hints(const QVariantList& notification) {
    return qdbus_cast<QVariantMap>(notification.at(6));
  }

  BusFake fake;
};

class NotificationTest : public ::testing::Test {
 protected:
  desktop::Notification finished() const {
    return {desktop::Notification::Kind::Information, u"Snapshot captured"_s,
            u"Snapshot captured for <b>A & B</b>"_s,
            QString::fromUtf16(desktop::defaultNotificationSound), u"/tmp/a b.pdf"_s};
  }

  std::shared_ptr<RecordedFileManager> files_ = std::make_shared<RecordedFileManager>();
  std::shared_ptr<RecordedSounds> sounds_ = std::make_shared<RecordedSounds>();
};

}  // namespace

TEST_F(NotificationTest, FullServerGetsEscapedTextSoundAndAWayToTheFile) {
  NotificationServer server({u"body"_s, u"body-markup"_s, u"actions"_s, u"sound"_s});
  const auto notifications = desktop::Notifications::create(files_, sounds_);
  notifications->deliver(finished());
  const QVariantList values = server.notification();
  ASSERT_EQ(values.size(), 8);
  EXPECT_EQ(values[0].toString(), u"Corvalis"_s);
  EXPECT_EQ(values[3].toString(), u"Snapshot captured"_s);
  EXPECT_EQ(values[4].toString(), u"Snapshot captured for &lt;b&gt;A &amp; B&lt;/b&gt;"_s);
  EXPECT_TRUE(values[5].toStringList().contains(u"default"_s));
  const auto hints = NotificationServer::hints(values);
  EXPECT_EQ(hints[u"sound-name"_s].toString(), u"message-new-instant"_s);
  EXPECT_FALSE(hints.contains(u"suppress-sound"_s));
  EXPECT_EQ(hints[u"category"_s].toString(), u"transfer.complete"_s);
  EXPECT_EQ(hints[u"desktop-entry"_s].toString(), u"com.maplebrook.corvalis"_s);
  EXPECT_TRUE(sounds_->played.isEmpty());

  // Another program's notification is none of ours. The click may overtake the server's number for
  // the notification, so it is repeated until it has been understood.
  server.fake.emitSignal(path, service, u"ActionInvoked"_s, {8U, u"default"_s});
  EXPECT_TRUE(support::waitFor([&] {
    if (files_->shown.isEmpty())
      server.fake.emitSignal(path, service, u"ActionInvoked"_s, {7U, u"default"_s});
    return !files_->shown.isEmpty();
  }));
  EXPECT_EQ(files_->shown.first(), u"/tmp/a b.pdf"_s);
}

TEST_F(NotificationTest, PlainServerGetsPlainTextAndWePlayTheSound) {
  NotificationServer server({u"body"_s});
  const auto notifications = desktop::Notifications::create(files_, sounds_);
  auto failed = finished();
  failed.kind = desktop::Notification::Kind::Failure;
  failed.soundName = u"Basso"_s;
  notifications->deliver(failed);
  const QVariantList values = server.notification();
  ASSERT_EQ(values.size(), 8);
  EXPECT_EQ(values[4].toString(), u"Snapshot captured for <b>A & B</b>"_s);
  EXPECT_TRUE(values[5].toStringList().isEmpty());
  const auto hints = NotificationServer::hints(values);
  EXPECT_TRUE(hints[u"suppress-sound"_s].toBool());
  EXPECT_FALSE(hints.contains(u"sound-name"_s));
  EXPECT_EQ(hints[u"category"_s].toString(), u"transfer.error"_s);
  EXPECT_EQ(sounds_->played, QStringList{u"Basso"_s});
}

TEST_F(NotificationTest, ServerThatComesLaterIsAskedAnew) {
  const auto notifications = desktop::Notifications::create(files_, sounds_);
  notifications->deliver(finished());
  {
    NotificationServer plain({u"body"_s});
    notifications->deliver(finished());
    EXPECT_TRUE(support::waitFor([&] { return !plain.fake.callsOf(u"Notify"_s).isEmpty(); }));
  }
  NotificationServer markup({u"body-markup"_s});
  EXPECT_TRUE(support::waitFor([&] {
    notifications->deliver(finished());
    const auto calls = markup.fake.callsOf(u"Notify"_s);
    return !calls.isEmpty() && calls.last().arguments()[4].toString().contains(u"&amp;"_s);
  }));
}
