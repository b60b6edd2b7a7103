#include "platform/browsers/HostManifests.h"

#include <gmock/gmock.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

#include "platform/browsers/AddOn.h"

using namespace Qt::StringLiterals;
using namespace browsers;
using ::testing::ElementsAre;

namespace {

QJsonObject jsonFile(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return QJsonDocument::fromJson(file.readAll()).object();
}

QString config(const QString& path) {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/' + path;
}

/// Everything in the user's folders, with the contents of files.
QMap<QString, QByteArray> everything() {
  QMap<QString, QByteArray> found;
  QDirIterator iterator(QDir::homePath(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
  while (iterator.hasNext()) {
    QFile file(iterator.next());
    const bool isFile = file.open(QIODevice::ReadOnly);
    found.insert(file.fileName(), isFile ? file.readAll() : QByteArray());
  }
  return found;
}

TEST(HostManifests, TheIdentifierFollowsFromTheKeyOfTheAddOn) {
  const QJsonObject manifest =
      jsonFile(QStringLiteral(CORVALIS_SOURCE_DIR "/browser-addon/manifest.json"));
  const auto key = QByteArray::fromBase64(manifest.value(u"key"_s).toString().toLatin1());
  QString identifier;
  for (const char digit :
       QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex().first(32))
    identifier += QChar(u'a' + QString(QLatin1Char(digit)).toInt(nullptr, 16));
  EXPECT_EQ(identifier, QString::fromUtf16(chromiumAddOn));
  const auto gecko =
      manifest.value(u"browser_specific_settings"_s).toObject().value(u"gecko"_s).toObject();
  EXPECT_EQ(gecko.value(u"id"_s).toString(), QString::fromUtf16(firefoxAddOn));
}

TEST(HostManifests, EachBrowserThatIsThereLearnsOfTheHostAndForgetsItExactly) {
  QDir().mkpath(config(u"chromium"_s));
  QDir().mkpath(config(u"vivaldi/NativeMessagingHosts"_s));
  QFile other(config(u"vivaldi/NativeMessagingHosts/other.json"_s));
  ASSERT_TRUE(other.open(QIODevice::WriteOnly));
  other.write("{}");
  other.close();
  // Newer releases of Firefox keep their profiles here, and read manifests in the old place.
  QDir().mkpath(config(u"mozilla/firefox"_s));
  const auto before = everything();

  // Twice, with another path: the second brings the first up to date and can still be undone.
  EXPECT_EQ(installHostManifests(u"/old/corvalis"_s), std::nullopt);
  EXPECT_EQ(installHostManifests(u"/opt/it's here/corvalis"_s), std::nullopt);
  const auto chromium =
      jsonFile(config(u"chromium/NativeMessagingHosts/com.maplebrook.corvalis.json"_s));
  EXPECT_EQ(chromium.value(u"name"_s).toString(), QString::fromUtf16(hostName));
  EXPECT_EQ(chromium.value(u"allowed_origins"_s).toArray(),
            QJsonArray{u"chrome-extension://"_s + QString::fromUtf16(chromiumAddOn) + u"/"_s});
  const auto firefox = jsonFile(QDir::homePath() +
                                u"/.mozilla/native-messaging-hosts/com.maplebrook.corvalis.json"_s);
  EXPECT_EQ(firefox.value(u"allowed_extensions"_s).toArray(),
            QJsonArray{QString::fromUtf16(firefoxAddOn)});
  EXPECT_TRUE(
      QFile::exists(config(u"vivaldi/NativeMessagingHosts/com.maplebrook.corvalis.json"_s)));
  EXPECT_FALSE(QFile::exists(config(u"google-chrome"_s)));

  EXPECT_EQ(removeHostManifests(), std::nullopt);
  EXPECT_EQ(everything(), before);
  EXPECT_EQ(removeHostManifests(), std::nullopt);
  EXPECT_EQ(everything(), before);
}

TEST(HostManifests, TheStarterRunsTheProgramWithWhatTheBrowserSays) {
  QDir().mkpath(config(u"chromium"_s));
  QProcess integrate;
  integrate.start(QStringLiteral(NATIVE_HOST_PROGRAM), {u"integrate"_s});
  ASSERT_TRUE(integrate.waitForFinished());
  ASSERT_EQ(integrate.exitCode(), 0) << integrate.readAllStandardError().toStdString();
  const QString starter =
      jsonFile(config(u"chromium/NativeMessagingHosts/com.maplebrook.corvalis.json"_s))
          .value(u"path"_s)
          .toString();
  for (const auto& [origin, status] :
       {std::pair(QString::fromUtf16(chromiumAddOn), 0), std::pair(u"stranger"_s, 2)}) {
    QProcess host;
    host.start(starter, {u"chrome-extension://"_s + origin + u'/'});
    ASSERT_TRUE(host.waitForStarted());
    host.closeWriteChannel();
    ASSERT_TRUE(host.waitForFinished());
    EXPECT_EQ(host.exitCode(), status);
  }
  integrate.start(QStringLiteral(NATIVE_HOST_PROGRAM), {u"integrate"_s, u"--remove"_s});
  ASSERT_TRUE(integrate.waitForFinished());
  EXPECT_EQ(integrate.exitCode(), 0);
  EXPECT_FALSE(QFile::exists(starter));
}

}  // namespace
