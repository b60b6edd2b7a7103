#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QUrl>

#include "BusFake.h"
#include "ProgramRecorder.h"
#include "platform/desktop/MailComposer.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

const QString portalPath = u"/org/freedesktop/portal/desktop"_s;

/// Makes the program with this entry the user's mail program, until the end of the test.
class MailHandler {
 public:
  MailHandler(const QString& entry, const QString& command) {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QDir().mkpath(data + u"/applications"_s);
    write(data + u"/applications/"_s + entry, u"[Desktop Entry]\nExec="_s + command + u"\n"_s);
    write(list(),
          u"[Default Applications]\nx-scheme-handler/mailto = gone.desktop;%1;\n"_s.arg(entry));
  }
  ~MailHandler() { QFile::remove(list()); }

 private:
  static QString list() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/mimeapps.list"_s;
  }
  static void write(const QString& path, const QString& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(text.toUtf8());
  }
};

class Mail : public ::testing::Test {
 protected:
  QString attachment(const QString& name) {
    const QString path = folder_.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("contents");
    return path;
  }

  /// The outcome of a message with the attachment.
  MaybeError compose(const QString& path, desktop::MailComposer::Limits limits = {}) {
    const auto composer = desktop::MailComposer::create(limits);
    std::optional<MaybeError> outcome;
    composer->newMessage(path, [&outcome](MaybeError error) { outcome = std::move(error); });
    EXPECT_TRUE(support::waitFor([&] { return outcome.has_value(); }));
    return outcome.value_or(std::nullopt);
  }

  /// A portal that answers a request with this response; none: it never does.
  std::unique_ptr<BusFake> portal(std::optional<uint> response) {
    return std::make_unique<BusFake>(
        u"org.freedesktop.portal.Desktop"_s, portalPath,
        [this, response](const QDBusMessage& call) -> std::optional<QVariantList> {
          if (call.member() != u"ComposeEmail"_s) return QVariantList();
          const auto options = qdbus_cast<QVariantMap>(call.arguments().at(1));
          QString sender = call.service().mid(1);
          const QString request = portalPath + u"/request/"_s + sender.replace(u'.', u'_') + u'/' +
                                  options[u"handle_token"_s].toString();
          readAttachments(options);
          if (response)
            portal_->emitSignal(request, u"org.freedesktop.portal.Request"_s, u"Response"_s,
                                {*response, QVariantMap()});
          return QVariantList{QVariant::fromValue(QDBusObjectPath(request))};
        });
  }

  void readAttachments(const QVariantMap& options) {
    const auto argument = options[u"attachment_fds"_s].value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
      QDBusUnixFileDescriptor descriptor;
      argument >> descriptor;
      QByteArray bytes(100, '\0');
      bytes.resize(::read(descriptor.fileDescriptor(), bytes.data(), 100));
      received_ << bytes;
      receivedPaths_ << QFile::symLinkTarget(
          u"/proc/self/fd/%1"_s.arg(descriptor.fileDescriptor()));
    }
    argument.endArray();
  }

  ProgramRecorder programs_;
  QTemporaryDir folder_;
  std::unique_ptr<BusFake> portal_;
  QByteArrayList received_;
  QStringList receivedPaths_;
};

}  // namespace

TEST_F(Mail, ThunderbirdGetsAddressesThatItsParserCannotSplit) {
  const MailHandler handler(u"thunderbird.desktop"_s, programs_.path(u"thunderbird"_s) + u" %u"_s);
  programs_.add(u"thunderbird"_s);
  const QString path = attachment(u"a, 'b' \"c\" 100%25 #ü\n日本.pdf"_s);
  EXPECT_EQ(compose(path), std::nullopt);
  const auto runs = programs_.runs(u"thunderbird"_s);
  ASSERT_EQ(runs.size(), 1);
  ASSERT_EQ(runs[0].size(), 2);
  EXPECT_EQ(runs[0][0], u"-compose"_s);
  const QString fields = runs[0][1];
  ASSERT_TRUE(fields.startsWith(u"attachment='file:///"_s) && fields.endsWith(u'\''));
  const QString address = fields.mid(12).chopped(1);
  EXPECT_FALSE(address.contains(u',') || address.contains(u'\'') || address.contains(u' '));
  EXPECT_EQ(QUrl::fromEncoded(address.toLatin1()).toLocalFile(), path);
}

TEST_F(Mail, PortalGetsTheOpenFileAndItsResponseDecides) {
  programs_.add(u"xdg-email"_s);
  const QString path = attachment(u"ä \"b\", c.pdf"_s);
  portal_ = portal(0);
  EXPECT_EQ(compose(path), std::nullopt);
  EXPECT_EQ(received_, QByteArrayList{"contents"});
  EXPECT_EQ(receivedPaths_, QStringList{path});
  EXPECT_TRUE(QFile::exists(path));

  portal_.reset();
  portal_ = portal(1);
  EXPECT_EQ(compose(path).value_or(Error()).localizedDescription, u"It was cancelled."_s);
  EXPECT_TRUE(programs_.runs(u"xdg-email"_s).isEmpty()) << "a cancelled message was made again";
}

TEST_F(Mail, PortalThatNeverAnswersIsGivenUpAndItsRequestClosed) {
  programs_.add(u"xdg-email"_s);
  portal_ = portal(std::nullopt);
  desktop::MailComposer::Limits limits;
  limits.portal = std::chrono::milliseconds(300);
  EXPECT_TRUE(compose(attachment(u"a.pdf"_s), limits).has_value());
  EXPECT_TRUE(support::waitFor([&] { return portal_->callsOf(u"Close"_s).size() == 1; }));
  EXPECT_TRUE(programs_.runs(u"xdg-email"_s).isEmpty());
}

TEST_F(Mail, WithoutOrWithAFailingPortalXdgEmailTakesTheFile) {
  programs_.add(u"xdg-email"_s);
  const QString path = attachment(u"a 'b' $(c) ü.pdf"_s);
  EXPECT_EQ(compose(path), std::nullopt);
  portal_ = portal(2);
  EXPECT_EQ(compose(path), std::nullopt);
  const QStringList expected{u"--utf8"_s, u"--attach"_s, path};
  EXPECT_EQ(programs_.runs(u"xdg-email"_s), (QList<QStringList>{expected, expected}));
}

TEST_F(Mail, XdgEmailGetsAPathThatAScriptKeeps) {
  programs_.add(u"xdg-email"_s);
  EXPECT_EQ(compose(attachment(u"two\nlines\\ .pdf"_s)), std::nullopt);
  const QString given = programs_.runs(u"xdg-email"_s).value(0).value(2);
  EXPECT_TRUE(given.endsWith(u"/two lines  .pdf"_s)) << qPrintable(given);
  QFile file(given);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), "contents");
  QDir(QFileInfo(given).path()).removeRecursively();
}

TEST_F(Mail, FailuresNameTheirCauseAndAStayingLauncherIsNone) {
  const QString path = attachment(u"a.pdf"_s);
  EXPECT_EQ(compose(path).value_or(Error()).code, 1) << "no way to a mail program";
  EXPECT_EQ(compose(folder_.filePath(u"missing.pdf"_s)).value_or(Error()).localizedDescription,
            folder_.filePath(u"missing.pdf"_s) + u" cannot be read."_s);
  programs_.add(u"xdg-email"_s, "exit 3");
  EXPECT_TRUE(
      compose(path)->localizedDescription.endsWith(u"xdg-email failed with exit code 3."_s));
  programs_.add(u"xdg-email"_s, "exec /bin/sleep 1");
  desktop::MailComposer::Limits limits;
  limits.launcher = std::chrono::milliseconds(300);
  EXPECT_EQ(compose(path, limits), std::nullopt);
  siginfo_t child{};
  EXPECT_TRUE(support::waitFor([&child] {
    return ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT | __WALL) != 0;
  })) << "the launcher was not waited for after its end";
}
