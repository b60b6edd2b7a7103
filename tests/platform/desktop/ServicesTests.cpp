#include <gtest/gtest.h>
#include <unistd.h>

#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QUrl>

#include "BusFake.h"
#include "ProgramRecorder.h"
#include "platform/desktop/BrowserOpener.h"
#include "platform/desktop/ColorSchemePreference.h"
#include "platform/desktop/FileManager.h"
#include "platform/desktop/RunningApplications.h"
#include "platform/desktop/SoundPlayer.h"
#include "platform/desktop/Trash.h"
#include "platform/desktop/internal/SoundFiles.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

QString writeFile(const QString& path) {
  QDir().mkpath(QFileInfo(path).path());
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
  file.write("x");
  return path;
}

/// Runs a service's operation to its end.
template <class Begin>
MaybeError outcomeOf(Begin begin) {
  std::optional<MaybeError> outcome;
  begin([&outcome](MaybeError error) { outcome = std::move(error); });
  EXPECT_TRUE(support::waitFor([&] { return outcome.has_value(); }));
  return outcome.value_or(std::nullopt);
}

}  // namespace

TEST(FileManager, ShowsTheFileElseItsFolder) {
  ProgramRecorder programs;
  programs.add(u"xdg-open"_s);
  const QTemporaryDir folder;
  const QString path = writeFile(folder.filePath(u"a, b#\n%.pdf"_s));
  const auto manager = desktop::FileManager::create();
  const auto reveal = [&](const QString& file) {
    return outcomeOf([&](const auto& completion) { manager->reveal(file, completion); });
  };
  EXPECT_EQ(reveal(path), std::nullopt);
  EXPECT_EQ(programs.runs(u"xdg-open"_s), QList<QStringList>{{folder.path()}});

  BusFake fake(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
               [](const QDBusMessage&) { return QVariantList(); });
  EXPECT_EQ(reveal(path), std::nullopt);
  ASSERT_EQ(fake.calls().size(), 1);
  EXPECT_EQ(fake.calls()[0].member(), u"ShowItems"_s);
  const QStringList addresses = fake.calls()[0].arguments()[0].toStringList();
  ASSERT_EQ(addresses.size(), 1);
  EXPECT_EQ(QUrl(addresses[0]).toLocalFile(), path);
  EXPECT_EQ(programs.runs(u"xdg-open"_s).size(), 1);

  EXPECT_TRUE(reveal(folder.filePath(u"gone"_s)).has_value());
}

TEST(BrowserOpener, OpensWebAddressesOnly) {
  ProgramRecorder programs;
  programs.add(u"xdg-open"_s);
  const auto opener = desktop::BrowserOpener::create();
  const auto open = [&](const QString& address) {
    return outcomeOf([&](const auto& completion) { opener->open(QUrl(address), completion); });
  };
  EXPECT_EQ(open(u"https://localhost/a?b=c d&e='\"ü"_s), std::nullopt);
  EXPECT_EQ(programs.runs(u"xdg-open"_s),
            QList<QStringList>{{u"https://localhost/a?b=c%20d&e='%22%C3%BC"_s}});
  for (const auto& address :
       {u"file:///etc/passwd"_s, u"javascript:alert(1)"_s, u"--help"_s, u"http:///a"_s})
    EXPECT_TRUE(open(address).has_value()) << qPrintable(address);
  EXPECT_EQ(programs.runs(u"xdg-open"_s).size(), 1);
}

TEST(RunningApplications, ChromeIsALivingBrowserOnTheUsersOwnProfile) {
  const QTemporaryDir folder;
  const auto start = [&folder](QProcess& process, const QString& name) {
    const QString program = folder.filePath(name);
    QFile::copy(QFileInfo(u"/bin/sleep"_s).canonicalFilePath(), program);
    process.start(program, {u"60"_s});
    EXPECT_TRUE(process.waitForStarted());
  };
  const auto applications = desktop::RunningApplications::create();
  const auto chrome = [&] { return applications->isRunning(u"com.google.Chrome"_s); };
  const QString profile =
      QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/chromium"_s;
  QDir().mkpath(profile);
  const auto lock = [&](const QString& host, qint64 process) {
    QFile::remove(profile + u"/SingletonLock"_s);
    const QByteArray target = (host + u'-' + QString::number(process)).toLocal8Bit();
    EXPECT_EQ(
        ::symlink(target.constData(), QFile::encodeName(profile + u"/SingletonLock"_s).constData()),
        0);
  };
  EXPECT_FALSE(chrome()) << "no profile is in use";

  QProcess browser;
  start(browser, u"chromium"_s);
  EXPECT_FALSE(chrome()) << "a browser on another profile";
  const QString host = QSysInfo::machineHostName();
  lock(host, browser.processId());
  EXPECT_TRUE(chrome());
  EXPECT_FALSE(applications->isRunning(u"com.apple.Safari"_s));
  EXPECT_FALSE(applications->isRunning(u"com.google.chrome"_s));

  lock(u"other-host"_s, browser.processId());
  EXPECT_FALSE(chrome()) << "a profile on a shared home in use elsewhere";
  QProcess other;
  start(other, u"editor"_s);
  lock(host, other.processId());
  EXPECT_FALSE(chrome()) << "a lock left by a crash, its number taken by another program";
  lock(host, browser.processId());
  browser.kill();
  browser.waitForFinished();
  EXPECT_FALSE(chrome()) << "a lock left by a crash";
  other.kill();
  other.waitForFinished();
}

TEST(ColorSchemePreference, FollowsThePortal) {
  const QString appearance = u"org.freedesktop.appearance"_s;
  const QString path = u"/org/freedesktop/portal/desktop"_s;
  const QString settings = u"org.freedesktop.portal.Settings"_s;
  const auto value = [](const QVariant& inner) { return QVariant::fromValue(QDBusVariant(inner)); };
  BusFake portal(u"org.freedesktop.portal.Desktop"_s, path,
                 [&](const QDBusMessage& call) -> std::optional<QVariantList> {
                   const auto arguments = call.arguments();
                   if (arguments[1] == u"color-scheme"_s) return QVariantList{value(value(1U))};
                   if (arguments[1] == u"enable-animations"_s)
                     return QVariantList{value(value(true))};
                   return std::nullopt;
                 });
  const auto preference = desktop::ColorSchemePreference::create();
  int changes = 0;
  preference->setObserver([&changes] { ++changes; });
  EXPECT_EQ(preference->colorScheme(), desktop::ColorScheme::NoPreference);
  EXPECT_TRUE(support::waitFor([&] { return portal.calls().size() == 3 && changes == 1; }));
  EXPECT_EQ(preference->colorScheme(), desktop::ColorScheme::Dark);
  EXPECT_EQ(preference->motion(), desktop::Motion::Full);

  const auto change = [&](const QString& group, const QString& key, const QVariant& inner) {
    portal.emitSignal(path, settings, u"SettingChanged"_s, {group, key, value(inner)});
  };
  change(appearance, u"color-scheme"_s, 2U);
  change(appearance, u"contrast"_s, 1U);
  change(u"org.gnome.desktop.interface"_s, u"enable-animations"_s, false);
  EXPECT_TRUE(support::waitFor([&] { return changes == 3; }));
  EXPECT_EQ(preference->colorScheme(), desktop::ColorScheme::Light);
  EXPECT_EQ(preference->motion(), desktop::Motion::Reduced);
}

TEST(Trash, KeepsTheFileInTheUsersTrash) {
  const QString home = QDir::homePath();
  const QString path = writeFile(home + u"/a b.pdf"_s);
  QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)).removeRecursively();
  const auto moved = desktop::moveToTrash(path);
  ASSERT_TRUE(moved.has_value()) << qPrintable(moved.error().localizedDescription);
  EXPECT_FALSE(QFile::exists(path));
  EXPECT_TRUE(QFile::exists(*moved));
  EXPECT_TRUE(moved->contains(u"Trash/files/"_s)) << qPrintable(*moved);
  EXPECT_FALSE(desktop::moveToTrash(path).has_value());
}

TEST(Sounds, AreBundledOrTheThemes) {
  const auto player = desktop::SoundPlayer::create();
  QFile click(u":/corvalis/sounds/click.wav"_s);
  ASSERT_TRUE(click.open(QIODevice::ReadOnly));
  EXPECT_EQ(click.read(4), "RIFF");
  EXPECT_EQ(desktop::soundSource(u"click.aiff"_s), QUrl(u"qrc:/corvalis/sounds/click.wav"_s));

  const QString theme = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                        u"/sounds/freedesktop/stereo/"_s;
  EXPECT_EQ(desktop::soundSource(QString::fromUtf16(desktop::emptyTrashSound)).isEmpty(),
            !QFile::exists(u"/usr/share/sounds/freedesktop/stereo/trash-empty.oga"_s));
  const QString file = writeFile(theme + u"trash-empty.oga"_s);
  EXPECT_EQ(desktop::soundSource(QString::fromUtf16(desktop::emptyTrashSound)),
            QUrl::fromLocalFile(file));
  EXPECT_TRUE(desktop::soundSource(u"../../trash-empty"_s).isEmpty());
  EXPECT_EQ(desktop::soundThemeName(u"Basso"_s), u"dialog-error"_s);
}
