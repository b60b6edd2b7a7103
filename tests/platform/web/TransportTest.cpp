#include "platform/web/Transport.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <QJsonObject>
#include <atomic>
#include <future>
#include <optional>

#include "platform/web/Connection.h"
#include "platform/web/Message.h"
#include "platform/web/Session.h"
#include "platform/web/WebError.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

/// The browser's side of the two pipes.
struct Peer {
  Peer() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) == 0)
      ourRead = web::FileDescriptor(ends[0]), write = web::FileDescriptor(ends[1]);
    if (::pipe2(ends, O_CLOEXEC) == 0)
      read = web::FileDescriptor(ends[0]), ourWrite = web::FileDescriptor(ends[1]);
  }
  void say(std::string_view text) {
    EXPECT_EQ(::write(write.get(), text.data(), text.size()), ssize_t(text.size()));
  }
  std::string hear(size_t size) {
    std::string text(size, ' ');
    size_t filled = 0;
    while (filled < size) {
      const ssize_t count = ::read(read.get(), text.data() + filled, size - filled);
      if (count <= 0) break;
      filled += size_t(count);
    }
    text.resize(filled);
    return text;
  }

  web::FileDescriptor read, write, ourRead, ourWrite;
};

using namespace std::string_literals;

TEST(Framing, MessagesAreWholeHoweverTheyArrive) {
  Peer peer;
  std::mutex mutex;
  std::vector<std::string> messages;
  std::promise<void> closed;
  web::Transport transport(std::move(peer.ourRead), std::move(peer.ourWrite),
                           {[&](std::string_view text) {
                              std::lock_guard lock(mutex);
                              messages.emplace_back(text);
                            },
                            [](auto) {}, [&](const QString&) { closed.set_value(); }});
  peer.say("one\0two\0th"s);
  ASSERT_TRUE(support::waitFor([&] {
    std::lock_guard lock(mutex);
    return messages.size() == 2;
  }));
  peer.say("ree\0"s);
  const std::string large(5 << 20, 'x');
  std::thread writer([&] {
    for (size_t sent = 0; sent < large.size(); sent += 65536)
      peer.say(std::string_view(large).substr(sent, 65536));
    peer.say("\0unfinished"s);
    peer.write.reset();
  });
  ASSERT_EQ(closed.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
  writer.join();
  EXPECT_THAT(messages, ::testing::ElementsAre("one", "two", "three", large));
}

TEST(Framing, LargeMessagesGoOutWholeAndInOrder) {
  Peer peer;
  web::Transport transport(std::move(peer.ourRead), std::move(peer.ourWrite),
                           {[](auto) {}, [](auto) {}, [](auto&) {}});
  const QByteArray large(3 << 20, 'y');
  transport.send(large);
  transport.send("after");
  EXPECT_EQ(peer.hear(size_t(large.size()) + 7), large.toStdString() + "\0after\0"s);
}

TEST(Framing, APeerThatIsGoneClosesInsteadOfKilling) {
  Peer peer;
  std::promise<void> closed;
  web::Transport transport(std::move(peer.ourRead), std::move(peer.ourWrite),
                           {[](auto) {}, [](auto) {}, [&](auto&) { closed.set_value(); }});
  peer.read.reset();
  transport.send("nobody reads this");
  EXPECT_EQ(closed.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

class ConnectionTest : public ::testing::Test {
 protected:
  ConnectionTest() {
    connection = web::Connection::create(std::move(peer.ourRead), std::move(peer.ourWrite));
    session = std::make_shared<web::Session>();
    session->attach(connection, u"S"_s);
  }
  void send(const QString& method, std::chrono::milliseconds timeout = std::chrono::seconds(30)) {
    session->send(
        method, {},
        [this](const Result<QJsonObject>& reply) {
          outcomes << (reply ? reply->value(u"v").toString()
                             : u"error %1"_s.arg(reply.error().code));
        },
        timeout);
  }
  bool outcome(int count) {
    return support::waitFor([&] { return outcomes.size() == count; });
  }

  Peer peer;
  std::shared_ptr<web::Connection> connection;
  std::shared_ptr<web::Session> session;
  QStringList outcomes;
};

TEST_F(ConnectionTest, RepliesFindTheirCommandsInAnyOrder) {
  send(u"A.a"_s);
  send(u"B.b"_s);
  peer.say(R"({"id":2,"result":{"v":"second"},"sessionId":"S"})"
           "\0"s
           R"({"id":99,"result":{}})"
           "\0"s
           R"({"sessionId":"S","result":{"v":"first"},"id":1})"
           "\0"s);
  ASSERT_TRUE(outcome(2));
  EXPECT_EQ(outcomes, QStringList({u"second"_s, u"first"_s}));
}

TEST_F(ConnectionTest, ALargeReplyIsAnnouncedOnceBeforeItIsWhole) {
  int announced = 0;
  QByteArray data;
  session->sendForData(
      u"A.a"_s, {}, {"v", [&] { ++announced; }},
      [&](const Result<web::DataReply>& reply) { data = reply ? reply->data : "error"; });
  send(u"B.b"_s);
  peer.say(R"({"id":2,"res)");
  peer.say(R"(ult":{"v":"small"}})"
           "\0"s
           R"({"id":1,"result":{"v":"aGVs)");
  ASSERT_TRUE(support::waitFor([&] { return announced > 0; }));
  EXPECT_EQ(data, "");
  peer.say(R"(bG8=)");
  peer.say(R"("}})"
           "\0"s);
  ASSERT_TRUE(support::waitFor([&] { return !data.isEmpty(); }));
  EXPECT_EQ(data, "hello");
  EXPECT_EQ(announced, 1);
}

TEST_F(ConnectionTest, ALateReplyDoesNotEndACommandTwice) {
  send(u"A.a"_s, std::chrono::milliseconds(20));
  ASSERT_TRUE(outcome(1));
  send(u"B.b"_s);
  peer.say(R"({"id":1,"result":{"v":"late"}})"
           "\0"s
           R"({"id":2,"result":{"v":"b"}})"
           "\0"s);
  ASSERT_TRUE(outcome(2));
  EXPECT_EQ(outcomes, QStringList({u"error %1"_s.arg(web::CommandTimedOut), u"b"_s}));
}

TEST_F(ConnectionTest, TheEndOfTheBrowserEndsEveryCommandOnce) {
  std::optional<Error> ended;
  connection->setEndedHandler([&](const Error& reason) { ended = reason; });
  send(u"A.a"_s);
  send(u"B.b"_s);
  peer.write.reset();
  ASSERT_TRUE(outcome(2));
  EXPECT_TRUE(ended);
  send(u"C.c"_s);
  ASSERT_TRUE(outcome(3));
  EXPECT_EQ(outcomes.removeDuplicates(), 2);
  EXPECT_EQ(outcomes.front(), u"error %1"_s.arg(web::EngineEnded));
}

TEST_F(ConnectionTest, EventsReachOnlyTheirSessionAndLivingHandlers) {
  int events = 0;
  int dropped = 0;
  auto subscription = session->addEventHandler(
      u"A.event"_s, [&](const QJsonObject& event) { events += event[u"n"].toInt(); });
  auto other = session->addEventHandler(u"A.event"_s, [&](const QJsonObject&) { ++dropped; });
  other.reset();
  peer.say(R"({"method":"A.event","params":{"n":1},"sessionId":"T"})"
           "\0"s
           R"({"method":"A.event","params":{"n":10},"sessionId":"S"})"
           "\0"s
           R"({"method":"A.other","params":{"n":100},"sessionId":"S"})"
           "\0"s);
  EXPECT_TRUE(support::waitFor([&] { return events == 10; }));
  EXPECT_EQ(dropped, 0);
}

}  // namespace
