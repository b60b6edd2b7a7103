#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QLocalSocket>
#include <QRandomGenerator>
#include <QtEndian>

#include "BusFake.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/desktop/internal/RequestFrame.h"
#include "platform/desktop/internal/SocketDoor.h"
#include "platform/dispatch/Dispatch.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

const QString service = u"com.maplebrook.corvalis"_s;
const QString path = u"/com/maplebrook/corvalis"_s;
const QString interface = u"org.freedesktop.Application"_s;

class Recorder : public desktop::ApplicationReceiver {
 public:
  void activate(const QVariantMap& platformData) override {
    EXPECT_TRUE(dispatch::isMainThread());
    events << u"activate"_s;
    data = platformData;
  }
  void open(const QStringList& addresses, const QVariantMap& platformData) override {
    EXPECT_TRUE(dispatch::isMainThread());
    events << u"open"_s;
    opened += addresses;
    data = platformData;
  }
  void activateAction(const QString& name, const QVariantList& parameters,
                      const QVariantMap& platformData) override {
    events << u"action %1 %2"_s.arg(name).arg(parameters.size());
    data = platformData;
  }

  QStringList events;
  QStringList opened;
  QVariantMap data;
};

/// A call as other programs make it. None while it runs.
class BusCall {
 public:
  explicit BusCall(const QString& method, const QVariantList& arguments) {
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"caller"_s);
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    watcher_ = std::make_unique<QDBusPendingCallWatcher>(bus.asyncCall(message, 60'000));
    EXPECT_TRUE(support::waitFor([this] { return watcher_->isFinished(); }));
  }
  bool failed() const { return watcher_->isError(); }

 private:
  std::unique_ptr<QDBusPendingCallWatcher> watcher_;
};

/// The outcome of a hand-over on another thread, as another process would do it.
Result<desktop::HandOver> handOverAway(const QStringList& addresses, const QVariantMap& data = {}) {
  std::optional<Result<desktop::HandOver>> outcome;
  std::atomic<bool> done = false;
  dispatch::globalAsync(dispatch::Priority::Default, [&] {
    outcome = desktop::handOver(addresses, data);
    done = true;
  });
  EXPECT_TRUE(support::waitFor([&] { return done.load(); }));
  return *outcome;
}

class Instance : public ::testing::Test {
 protected:
  void claim() {
    auto claimed = desktop::ApplicationService::claim(receiver_);
    ASSERT_TRUE(claimed.has_value()) << qPrintable(claimed.error().localizedDescription);
    ASSERT_NE(*claimed, nullptr);
    instance_ = std::move(*claimed);
  }

  Recorder receiver_;
  std::unique_ptr<desktop::ApplicationService> instance_;
};

}  // namespace

TEST_F(Instance, TakesTheCallsOfTheApplicationInterface) {
  claim();
  const QVariantMap data{{u"activation-token"_s, u"token"_s}};
  EXPECT_FALSE(BusCall(u"Activate"_s, {data}).failed());
  EXPECT_EQ(receiver_.data, data);
  EXPECT_FALSE(
      BusCall(u"Open"_s, {QStringList{u"corvxurl://a"_s, u"ä"_s}, QVariantMap()}).failed());
  EXPECT_EQ(receiver_.opened, (QStringList{u"corvxurl://a"_s, u"ä"_s}));
  EXPECT_FALSE(
      BusCall(u"ActivateAction"_s, {u"paste"_s, QVariantList{1, u"x"_s}, QVariantMap()}).failed());
  EXPECT_EQ(receiver_.events, (QStringList{u"activate"_s, u"open"_s, u"action paste 2"_s}));

  EXPECT_TRUE(BusCall(u"Open"_s, {u"no list"_s}).failed());
  EXPECT_TRUE(BusCall(u"Close"_s, {}).failed());
  EXPECT_EQ(receiver_.events.size(), 3);
}

TEST_F(Instance, TakesSixtyMegabytesInOneCallOfTheBus) {
  claim();
  const QString address = u"corvxurl://"_s + QString(60'000'000, u'x') + u"end"_s;
  EXPECT_FALSE(BusCall(u"Open"_s, {QStringList{address}, QVariantMap()}).failed());
  EXPECT_EQ(receiver_.opened, QStringList{address});
}

TEST_F(Instance, IsOneAndItsPlaceCanBeTakenAfterIt) {
  claim();
  auto second = desktop::ApplicationService::claim(receiver_);
  ASSERT_TRUE(second.has_value());
  EXPECT_EQ(*second, nullptr);
  EXPECT_FALSE(BusCall(u"Activate"_s, {QVariantMap()}).failed())
      << "the failed claim closed the door";
  instance_.reset();
  EXPECT_EQ(handOverAway({u"a"_s}).value(), desktop::HandOver::NoInstance);
  claim();
  const QVariantMap data{{u"desktop-startup-id"_s, u"i"_s}};
  EXPECT_EQ(handOverAway({u"a b"_s, QString(), u"\U0001F600"_s}, data).value(),
            desktop::HandOver::HandedOver);
  EXPECT_EQ(receiver_.opened, (QStringList{u"a b"_s, QString(), u"\U0001F600"_s}));
  EXPECT_EQ(receiver_.data, data);
  EXPECT_EQ(handOverAway({}).value(), desktop::HandOver::HandedOver);
  EXPECT_EQ(receiver_.events.last(), u"activate"_s);
}

TEST_F(Instance, IsReachedByTheBusWhereItsSocketIsNot) {
  BusFake owner(service, path, [](const QDBusMessage&) { return QVariantList(); });
  EXPECT_EQ(handOverAway({u"a"_s}).value(), desktop::HandOver::HandedOver);
  ASSERT_EQ(owner.calls().size(), 1);
  EXPECT_EQ(owner.calls()[0].member(), u"Open"_s);
  EXPECT_EQ(owner.calls()[0].arguments()[0].toStringList(), QStringList{u"a"_s});
  const auto large = handOverAway({QString(70'000'000, u'x')});
  ASSERT_FALSE(large.has_value());
  EXPECT_TRUE(large.error().localizedDescription.contains(u"too large for the session bus"_s));
  auto claimed = desktop::ApplicationService::claim(receiver_);
  ASSERT_TRUE(claimed.has_value());
  EXPECT_EQ(*claimed, nullptr) << "the name belongs to another";
}

TEST_F(Instance, BrokenPeersAreShutOutAndTheDoorStaysOpen) {
  claim();
  const QByteArray whole = desktop::frame({desktop::InstanceRequest::Kind::Open, {u"a"_s}, {}});
  QByteArray tooLarge(8, '\0');
  qToBigEndian<quint64>(desktop::longestRequest + 1, tooLarge.data());
  QByteArray hugeCount = whole;
  qToBigEndian<quint32>(0xFFFFFFFF, hugeCount.data() + 9);
  QByteArray unknownKind = whole;
  unknownKind[8] = 9;
  for (const QByteArray& bytes : {tooLarge, hugeCount, unknownKind, whole + 'x'}) {
    QLocalSocket socket;
    socket.connectToServer(desktop::instanceSocketPath());
    ASSERT_TRUE(socket.waitForConnected());
    socket.write(bytes);
    EXPECT_TRUE(support::waitFor([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_EQ(socket.bytesAvailable(), 0);
  }
  {
    QLocalSocket gone;
    gone.connectToServer(desktop::instanceSocketPath());
    ASSERT_TRUE(gone.waitForConnected());
    gone.write(whole.chopped(2));
    EXPECT_TRUE(support::waitFor([&] { return gone.bytesToWrite() == 0; }));
  }
  EXPECT_EQ(handOverAway({u"b"_s}).value(), desktop::HandOver::HandedOver);
  EXPECT_EQ(receiver_.opened, QStringList{u"b"_s});
}

TEST(RequestFrame, DamagedBodiesAreNoRequests) {
  const QByteArray body =
      desktop::frame({desktop::InstanceRequest::Kind::Open, {u"ab"_s, u"c"_s}, {{u"k"_s, u"v"_s}}})
          .mid(desktop::frameHeaderSize);
  ASSERT_TRUE(desktop::requestFromBody(body).has_value());
  for (qsizetype length = 0; length < body.size(); ++length)
    EXPECT_FALSE(desktop::requestFromBody(body.left(length)).has_value()) << length;
  QRandomGenerator random(3);
  for (int round = 0; round < 20'000; ++round) {
    QByteArray broken = body;
    for (int i = 0; i < 3; ++i)
      broken[random.bounded(broken.size())] = static_cast<char>(random.bounded(256));
    const auto request = desktop::requestFromBody(broken);
    EXPECT_LE(request.value_or(desktop::InstanceRequest()).texts.size(), body.size() / 4);
  }
}

TEST(SocketDoorAccess, OnlyTheUserReachesTheSocket) {
  Recorder receiver;
  const auto instance = desktop::ApplicationService::claim(receiver);
  ASSERT_TRUE(instance.has_value() && *instance);
  const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
  EXPECT_FALSE(QFile::permissions(desktop::instanceSocketPath()) & others);
}
