// What a user has set in the window is on the disk at once, whatever happens to the program.

#include <gtest/gtest.h>
#include <signal.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "Program.h"
#include "platform/defaults/UserDefaults.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "support/Wait.h"
#include "ui/preferences/CVSnapshotPreferencesViewController.h"

using namespace Qt::StringLiterals;
using test::Program;

namespace {

constexpr const char* fileVariable = "CORVALIS_TEST_SETTINGS";

class SettingsSurvive : public ::testing::Test {
 protected:
  void write(const QByteArray& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  /// The number that the notes on the disk hold; none before the first.
  static std::optional<int> roundOf(const QString& path) {
    const auto store = defaults::UserDefaults::open(path);
    EXPECT_FALSE(store->openingError());
    const auto notes = store->stringForKey(u"notes"_s);
    return notes ? std::optional(notes->toInt()) : std::nullopt;
  }

  QTemporaryDir folder;
  const QString path = folder.filePath(u"settings.json"_s);
};

}  // namespace

/// Run by the test below in a process of its own.
TEST(SettingsUser, DISABLED_changesThePaneUntilItIsKilled) {
  auto settings = std::make_shared<CVDefaultPreferences>(
      defaults::UserDefaults::open(qEnvironmentVariable(fileVariable)));
  settings->load();
  settings->setUsePagination(true);
  CVSnapshotPreferencesViewController pane;
  pane.setPreferences(settings);
  pane.show();
  auto& margin = test::child<QLineEdit>(pane, "marginTextField");
  for (int round = 1;; ++round) {
    margin.selectAll();
    QTest::keyClicks(&margin, QString::number(round));
    QTest::keyClick(&margin, Qt::Key_Return);
    test::child<QPlainTextEdit>(pane, "notesTextView").setPlainText(QString::number(round));
    QCoreApplication::processEvents();
  }
}

TEST_F(SettingsSurvive, aProgramThatIsKilledLosesAndMixesNothing) {
  for (int kill = 0; kill < 5; ++kill) {
    QProcess user;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(fileVariable), path);
    user.setProcessEnvironment(environment);
    user.start(QCoreApplication::applicationFilePath(),
               {u"--gtest_also_run_disabled_tests"_s, u"--gtest_filter=SettingsUser.*"_s});
    QFile::remove(path);
    ASSERT_TRUE(
        support::waitFor([&] { return QFile::exists(path) && roundOf(path) > 3 + 7 * kill; }));
    ::kill(static_cast<pid_t>(user.processId()), SIGKILL);
    ASSERT_TRUE(user.waitForFinished(10000));
    const auto store = defaults::UserDefaults::open(path);
    ASSERT_FALSE(store->openingError());
    const int margin = store->stringForKey(u"margin"_s).value_or(QString()).toInt();
    const int notes = store->stringForKey(u"notes"_s).value_or(QString()).toInt();
    // The margin is set first; each change was saved before the next began.
    EXPECT_TRUE(margin == notes || margin == notes + 1) << margin << ' ' << notes;
    EXPECT_EQ(store->stringForKey(u"preferencesSaved"_s), u"yes"_s);
  }
}

TEST_F(SettingsSurvive, theProgramStartsWithWhatItCanReadAndSaysWhatItCannot) {
  const struct {
    const char* name;
    QByteArray file;
    QString format;
    qsizetype warnings;
  } rows[] = {{"of an earlier release",
               R"({"preferencesSaved": "yes", "format": "PNG", "margin": "7"})", u"PNG"_s, 0},
              {"damaged", R"({"preferencesSaved": "yes", "format": "PN)", u"PDF"_s, 1},
              {"of another program", "[1, 2]", u"PDF"_s, 1}};
  for (const auto& row : rows) {
    write(row.file);
    CVAppDelegate::Services services;
    services.userDefaults = defaults::UserDefaults::open(path);
    services.makeEntry = [](const auto&...) { return std::make_shared<test::Entry>(); };
    const auto delegate = CVAppDelegate::create(std::move(services));
    delegate->applicationWillFinishLaunching();
    delegate->doFinishApplicationLaunch();
    const auto settings = CVObjectRepository::singleton().getPreferences();
    EXPECT_EQ(settings->format(), row.format) << row.name;
    EXPECT_TRUE(settings->enableIFrames()) << row.name;
    EXPECT_EQ(delegate->warnings().size(), row.warnings) << row.name;
    settings->setMargin(11);
    EXPECT_EQ(defaults::UserDefaults::open(path)->stringForKey(u"margin"_s), u"11"_s) << row.name;
    // A folder that has become a file refuses everybody, the super-user too.
    ASSERT_TRUE(QDir(folder.path()).removeRecursively());
    QFile obstacle(folder.path());
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    settings->setMargin(12);
    EXPECT_EQ(delegate->warnings().size(), row.warnings + 1) << row.name;
    EXPECT_TRUE(delegate->warnings().last().contains(path)) << row.name;
    ASSERT_TRUE(obstacle.remove() && QDir().mkpath(folder.path()));
    for (const QString& name : {u"preferences"_s, u"entryTaskManager"_s, u"utils"_s})
      CVObjectRepository::singleton().addObject(nullptr, name);
  }
}
