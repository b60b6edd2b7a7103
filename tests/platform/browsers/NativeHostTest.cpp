#include "platform/browsers/NativeHost.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstring>
#include <future>

#include "platform/browsers/AddOn.h"
#include "platform/browsers/AddOnDoor.h"
#include "platform/browsers/AddOnFrontPage.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/dispatch/Dispatch.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using namespace browsers;
using ::testing::ElementsAre;

namespace {

const QString ourOrigin = u"chrome-extension://"_s + QString::fromUtf16(chromiumAddOn) + u'/';

/// The host as a browser starts it.
class HostProcess {
 public:
  explicit HostProcess(const QStringList& arguments = {ourOrigin}) {
    process_.start(QStringLiteral(NATIVE_HOST_PROGRAM), QStringList{u"native-host"_s} + arguments);
    EXPECT_TRUE(process_.waitForStarted());
  }
  ~HostProcess() {
    process_.kill();
    process_.waitForFinished();
  }

  void write(const QByteArray& bytes) { process_.write(bytes); }
  void close() { process_.closeWriteChannel(); }
  /// -1 when it does not end.
  int status() {
    const bool ended =
        support::waitFor([this] { return process_.state() == QProcess::NotRunning; });
    return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }
  /// The next message; empty when none comes.
  QJsonObject message() {
    QJsonObject found;
    support::waitFor([&] {
      reader_.append(process_.readAllStandardOutput());
      const auto next = reader_.next();
      if (next && *next) found = **next;
      return !next || *next;
    });
    return found;
  }

 private:
  QProcess process_;
  MessageReader reader_;
};

class RecordingReceiver : public desktop::ApplicationReceiver {
 public:
  void activate(const QVariantMap&) override {}
  void open(const QStringList& addresses, const QVariantMap&) override { opened << addresses; }
  void activateAction(const QString&, const QVariantList&, const QVariantMap&) override {}
  QStringList opened;
};

QByteArray piece(const QString& kind, int identifier, int sequence, int total,
                 const QString& text) {
  return framed({{u"kind"_s, kind},
                 {u"id"_s, identifier},
                 {u"seq"_s, sequence},
                 {u"total"_s, total},
                 {u"text"_s, text}});
}

template <class Value>
Value inBackground(std::function<Value()> work) {
  auto future = std::make_shared<std::promise<Value>>();
  auto result = future->get_future();
  dispatch::globalAsync(dispatch::Priority::High, [future, work] { future->set_value(work()); });
  EXPECT_TRUE(support::waitFor(
      [&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  return result.get();
}

TEST(NativeHost, ServesOurAddOnAlone) {
  const QString firefox = QString::fromUtf16(firefoxAddOn);
  EXPECT_TRUE(isOurAddOn({ourOrigin}));
  EXPECT_TRUE(isOurAddOn({ourOrigin, u"--parent-window=0"_s}));
  EXPECT_TRUE(isOurAddOn({u"/home/x/com.maplebrook.corvalis.json"_s, firefox}));
  const QStringList strangers[] = {
      {},
      {u"chrome-extension://aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa/"_s},
      {ourOrigin.chopped(1)},
      {ourOrigin + u"more"_s},
      {u"chrome-extension://aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa/"_s, firefox},
      {u"/home/x/com.maplebrook.corvalis.json"_s, u"other@example.com"_s},
  };
  for (const QStringList& arguments : strangers) {
    EXPECT_FALSE(isOurAddOn(arguments)) << arguments.join(u' ').toStdString();
  }
  HostProcess stranger({u"chrome-extension://aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa/"_s});
  EXPECT_EQ(stranger.status(), 2);
}

TEST(NativeHost, EndsWithTheBrowserAndAtWhatIsNoMessage) {
  struct Case {
    const char* name;
    QByteArray input;
    int status;
  };
  const Case cases[] = {
      {"nothing at all", {}, 0},
      {"an unknown kind", framed({{u"kind"_s, u"run"_s}}), 0},
      {"a message cut short", framed({{u"kind"_s, u"focused"_s}}).chopped(1), 1},
      {"a header cut short", QByteArray(3, '\x01'), 1},
      {"more than a browser sends", QByteArray(4, '\xff'), 1},
      {"no JSON", framed({}).first(4) + "x}", 1},
  };
  for (const Case& item : cases) {
    HostProcess host;
    host.write(item.input);
    host.close();
    EXPECT_EQ(host.status(), item.status) << item.name;
  }
}

TEST(NativeHost, HandsARequestInPiecesToTheRunningProgram) {
  RecordingReceiver program;
  const auto service = desktop::ApplicationService::claim(program);
  ASSERT_TRUE(service && *service);
  HostProcess host;
  const QByteArray last = piece(u"request"_s, 4, 1, 2, u"corvxdata::AAAA"_s);
  host.write(piece(u"request"_s, 4, 0, 2, u"corvxurls://example.com/"_s) + last.first(9));
  host.write(last.sliced(9));
  const QJsonObject result = host.message();
  EXPECT_EQ(result.value(u"id"_s).toInt(), 4);
  EXPECT_TRUE(result.value(u"ok"_s).toBool());
  EXPECT_THAT(program.opened, ElementsAre(u"corvxurls://example.com/corvxdata::AAAA"_s));

  // A request that is whole still arrives when the browser ends at once.
  host.write(piece(u"request"_s, 5, 0, 1, u"corvxurl://example.com/late"_s));
  host.close();
  EXPECT_EQ(host.status(), 0);
  EXPECT_THAT(program.opened.value(1), u"corvxurl://example.com/late"_s);
}

TEST(NativeHost, StartsTheProgramWithARequestWhenItIsNotRunning) {
  QTemporaryDir folder;
  const QString record = folder.filePath(u"request"_s);
  qputenv("RECORDED_REQUEST", record.toLocal8Bit());
  HostProcess host;
  // More than a pipe or a command line holds.
  const QString request = u"corvxurl://example.com/corvxdata::"_s + QString(1 << 20, u'A');
  host.write(piece(u"request"_s, 1, 0, 1, request));
  EXPECT_TRUE(host.message().value(u"ok"_s).toBool());
  QByteArray recorded;
  EXPECT_TRUE(support::waitFor([&] {
    QFile file(record);
    recorded = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return recorded.endsWith('\n');
  }));
  EXPECT_TRUE(recorded == request.toUtf8() + '\n') << recorded.size();
}

TEST(NativeHost, HandsOverNothingButCaptureRequests) {
  RecordingReceiver program;
  const auto service = desktop::ApplicationService::claim(program);
  ASSERT_TRUE(service && *service);
  HostProcess host;
  int identifier = 0;
  for (const QString& text :
       {u"file:///etc/passwd"_s, u"/etc/passwd"_s, u"https://example.com/"_s, u""_s,
        u" corvxurl://example.com/"_s, u"db-k3r8tq0vz5mha2x://1/connect"_s}) {
    host.write(piece(u"request"_s, ++identifier, 0, 1, text));
    const QJsonObject result = host.message();
    EXPECT_EQ(result.value(u"id"_s).toInt(), identifier);
    EXPECT_FALSE(result.value(u"ok"_s).toBool(true)) << text.toStdString();
    EXPECT_FALSE(result.value(u"reason"_s).toString().isEmpty());
  }
  EXPECT_TRUE(program.opened.isEmpty());
}

TEST(NativeHost, RelaysTheProgramsQuestionsAlsoWhenTheProgramStartsLater) {
  HostProcess host;
  const auto door = AddOnDoor::create();
  ASSERT_EQ(door->listen(), std::nullopt);
  AddOnFrontPage page(door);
  ASSERT_TRUE(support::waitFor([&] { return page.isRunning(); }));

  auto address = std::async(std::launch::async, [&] { return page.address(); });
  QJsonObject query = host.message();
  EXPECT_EQ(query.value(u"what"_s).toString(), u"address"_s);
  host.write(
      piece(u"answer"_s, query.value(u"id"_s).toInt() + 7, 0, 1, u"{\"address\":\"late\"}"_s));
  host.write(piece(u"answer"_s, query.value(u"id"_s).toInt(), 0, 1, u"{\"address\":\"a:b\"}"_s));
  support::waitFor(
      [&] { return address.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
  EXPECT_EQ(address.get(), u"a:b"_s);

  auto texts = std::async(std::launch::async, [&] { return page.capture(); });
  query = host.message();
  EXPECT_EQ(query.value(u"what"_s).toString(), u"page"_s);
  host.write(piece(u"answer"_s, query.value(u"id"_s).toInt(), 0, 2,
                   u"{\"address\":\"c:d\",\"document\":\"<p>\",\"sty"_s));
  host.write(piece(u"answer"_s, query.value(u"id"_s).toInt(), 1, 2, u"les\":\"s\"}"_s));
  support::waitFor(
      [&] { return texts.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
  const PageTexts captured = texts.get();
  EXPECT_EQ(captured.document, u"<p>"_s);
  EXPECT_EQ(captured.styles, u"s"_s);
  EXPECT_EQ(captured.frames, std::nullopt);
  EXPECT_EQ(captured.address, u"c:d"_s);
}

TEST(AddOnDoor, ABrowserThatEndsOrIsMissingIsAnAnswer) {
  const auto door = AddOnDoor::create();
  ASSERT_EQ(door->listen(), std::nullopt);
  AddOnFrontPage page(door);
  EXPECT_FALSE(page.isRunning());
  EXPECT_EQ(inBackground<QString>([&] {
              (void)page.capture();
              return page.unavailableReason().value_or(QString());
            }),
            u"No browser is connected."_s);
  HostProcess host;
  ASSERT_TRUE(support::waitFor([&] { return page.isRunning(); }));
  auto texts = std::async(std::launch::async, [&] { return page.capture(); });
  ASSERT_EQ(host.message().value(u"what"_s).toString(), u"page"_s);
  host.close();
  ASSERT_TRUE(support::waitFor(
      [&] { return texts.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  EXPECT_EQ(texts.get().document, std::nullopt);
  EXPECT_EQ(page.unavailableReason(), u"The browser has ended."_s);
  EXPECT_TRUE(support::waitFor([&] { return !page.isRunning(); }));
}

}  // namespace
