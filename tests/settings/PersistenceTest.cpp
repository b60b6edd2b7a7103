#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "platform/defaults/UserDefaults.h"
#include "settings/CVDefaultPreferences.h"

using namespace Qt::StringLiterals;
using testing::_;
using testing::NiceMock;
using testing::StrictMock;

namespace {

class Observer : public CVDefaultPreferencesObserver {
 public:
  MOCK_METHOD(void, setDarkTheme, (), (override));
  MOCK_METHOD(void, setLightTheme, (), (override));
  MOCK_METHOD(void, updateAddButton, (), (override));
  MOCK_METHOD(void, settingsCouldNotBeSaved, (const Error&), (override));
};

class Persistence : public testing::Test {
 protected:
  std::shared_ptr<defaults::UserDefaults> store() const {
    return defaults::UserDefaults::open(path);
  }

  QTemporaryDir folder;
  const QString path = folder.filePath(u"settings.json"_s);
};

TEST_F(Persistence, NothingIsWrittenBeforeTheFirstChange) {
  CVDefaultPreferences settings(store());
  settings.load();
  EXPECT_FALSE(QFile::exists(path));
  EXPECT_EQ(settings.theme(), u"light"_s);
  EXPECT_EQ(settings.queueSize(), 3U);
  EXPECT_EQ(settings.defaultSnapshotWidth(), 1024U);
  EXPECT_TRUE(settings.systemNotifications());
  settings.setQueueSize(4);
  EXPECT_TRUE(QFile::exists(path));
}

TEST_F(Persistence, EveryFieldComesBack) {
  CVDefaultPreferences settings(store());
  const Font font = *settings.headerAndFooterFont();
  settings.setUsePagination(true);
  settings.setMargin(25);
  settings.setIncludeHeadersAndFooters(true);
  settings.setHeaderAndFooterFont(Font{font.name, 12.5});
  settings.setNotes(u"a \"note\"\nin two lines"_s);
  settings.setDownloadLocation(QUrl::fromLocalFile(u"/tmp/Ergebnisse & mehr"_s));
  settings.setDestination(u"Evernote"_s);
  settings.setOrientation(1);
  settings.setCompression(0.25F);
  settings.setConversionMode(u"Vector"_s);
  settings.setProcessAutomatically(true);
  settings.setAutomaticallyRemoveFromQueueOncePrinted(true);
  settings.setMaximumNumberOfConcurrentDonwloads(7);
  settings.setPrependTitleWithWebsiteDomain(true);
  settings.setRiskyConversion(true);
  settings.setTheme(u"dark"_s);
  settings.setQueueSize(5);
  settings.setSystemNotifications(false);
  settings.setSnapEffect(false);
  settings.setAddButtonBehaviour(u"chrome"_s);
  settings.setEnableIFrames(false);
  settings.setDefaultSnapshotWidth(1280);

  CVDefaultPreferences again(store());
  again.load();
  EXPECT_EQ(again.format(), u"PDF"_s);
  EXPECT_TRUE(again.usePagination());
  EXPECT_EQ(again.margin(), 25U);
  EXPECT_TRUE(again.includeHeadersAndFooters());
  EXPECT_EQ(again.headerAndFooterFont(), (Font{font.name, 12.5}));
  EXPECT_EQ(again.notes(), settings.notes());
  EXPECT_EQ(again.downloadLocation(), settings.downloadLocation());
  EXPECT_EQ(again.destination(), u"Evernote"_s);
  EXPECT_EQ(again.orientation(), 1);
  EXPECT_EQ(again.compression(), 0.25F);
  EXPECT_EQ(again.conversionMode(), u"Vector"_s);
  EXPECT_TRUE(again.processAutomatically());
  EXPECT_TRUE(again.automaticallyRemoveFromQueueOncePrinted());
  EXPECT_EQ(again.maximumNumberOfConcurrentDonwloads(), 7U);
  EXPECT_TRUE(again.prependTitleWithWebsiteDomain());
  EXPECT_TRUE(again.riskyConversion());
  EXPECT_EQ(again.theme(), u"dark"_s);
  EXPECT_EQ(again.queueSize(), 5U);
  EXPECT_FALSE(again.systemNotifications());
  EXPECT_FALSE(again.snapEffect());
  EXPECT_EQ(again.addButtonBehaviour(), u"chrome"_s);
  EXPECT_FALSE(again.enableIFrames());
  EXPECT_EQ(again.defaultSnapshotWidth(), 1280U);
}

TEST_F(Persistence, TheStoredTextsAreTheAgreedOnes) {
  CVDefaultPreferences settings(store());
  settings.setHeaderAndFooterFont(Font{u"DejaVu Serif"_s, 9.5});
  settings.setCompression(0.5F);
  settings.setNotes(u"x"_s);
  settings.setNotes(std::nullopt);
  const auto file = store();
  EXPECT_EQ(file->stringForKey(u"headerAndFooterFont"_s), u"DejaVu Serif$$$9.500000"_s);
  EXPECT_EQ(file->stringForKey(u"compression"_s), u"0.500000"_s);
  EXPECT_EQ(file->stringForKey(u"margin"_s), u"50"_s);
  EXPECT_EQ(file->stringForKey(u"maximumNumberOfConcurrentDonwloads"_s), u"3"_s);
  EXPECT_EQ(file->stringForKey(u"enableIFrames"_s), u"yes"_s);
  EXPECT_EQ(file->stringForKey(u"preferencesSaved"_s), u"yes"_s);
  EXPECT_FALSE(file->stringForKey(u"notes"_s));
}

TEST_F(Persistence, MissingKeysAndOtherSpellingsDegradeAsAgreed) {
  const auto file = store();
  file->setString(u"yes"_s, u"preferencesSaved"_s);
  file->setString(u"YES"_s, u"processAutomatically"_s);
  file->setString(u"Yes"_s, u"riskyConversion"_s);
  file->setString(u"12 points"_s, u"margin"_s);
  file->setString(u"No Such Font$$$10.000000"_s, u"headerAndFooterFont"_s);
  ASSERT_FALSE(file->synchronize());

  CVDefaultPreferences settings(store());
  settings.load();
  EXPECT_TRUE(settings.processAutomatically());
  EXPECT_TRUE(settings.riskyConversion());
  EXPECT_EQ(settings.margin(), 12U);
  EXPECT_FALSE(settings.headerAndFooterFont());
  EXPECT_FALSE(settings.usePagination());
  EXPECT_FALSE(settings.format());
  EXPECT_EQ(settings.compression(), 0.0F);
  EXPECT_EQ(settings.maximumNumberOfConcurrentDonwloads(), 0U);
  EXPECT_FALSE(settings.batchMode());
  EXPECT_TRUE(settings.enableIFrames());
  EXPECT_EQ(settings.queueSize(), 3U);
}

TEST_F(Persistence, BatchModeSwitchesFourOptionsButNotWhileLoading) {
  CVDefaultPreferences settings(store());
  settings.setBatchMode(true);
  EXPECT_TRUE(settings.processAutomatically());
  EXPECT_TRUE(settings.automaticallyRemoveFromQueueOncePrinted());
  EXPECT_FALSE(settings.snapEffect());
  EXPECT_FALSE(settings.systemNotifications());
  settings.setSnapEffect(true);

  CVDefaultPreferences again(store());
  again.load();
  EXPECT_TRUE(again.batchMode());
  EXPECT_TRUE(again.snapEffect());
  again.setBatchMode(false);
  EXPECT_FALSE(again.processAutomatically());
  EXPECT_TRUE(again.systemNotifications());
}

TEST_F(Persistence, ThemeAndAddButtonAreAppliedWhenLoaded) {
  CVDefaultPreferences settings(store());
  settings.setTheme(u"dark"_s);
  settings.setAddButtonBehaviour(u"safari"_s);

  const auto observer = std::make_shared<StrictMock<Observer>>();
  CVDefaultPreferences again(store());
  again.setObserver(observer);
  EXPECT_CALL(*observer, setDarkTheme());
  EXPECT_CALL(*observer, updateAddButton());
  again.load();
  EXPECT_CALL(*observer, setLightTheme());
  again.setTheme(u"sepia"_s);
}

TEST_F(Persistence, ADamagedFileIsSetAsideAndNeverOverwritten) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("{\"format\": \"PNG\", ");
  file.close();
  const auto damaged = store();
  EXPECT_TRUE(damaged->openingError());
  CVDefaultPreferences settings(damaged);
  settings.load();
  EXPECT_EQ(settings.format(), u"PDF"_s);
  settings.setMargin(1);
  QFile kept(path + u".damaged"_s);
  ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
  EXPECT_EQ(kept.readAll(), "{\"format\": \"PNG\", ");
  EXPECT_FALSE(store()->openingError());
}

TEST_F(Persistence, WhatCannotBeReadIsNotReplaced) {
  // A folder cannot be read as a file, not even by the super-user.
  ASSERT_TRUE(QDir().mkpath(path + u"/kept"_s));
  const auto unreadable = store();
  EXPECT_TRUE(unreadable->openingError());
  EXPECT_FALSE(unreadable->synchronize());
  EXPECT_TRUE(QFile::exists(path + u".damaged/kept"_s));
  EXPECT_FALSE(store()->openingError());
}

TEST_F(Persistence, AFolderThatCannotBeWrittenIsReported) {
  // A file where the folder should be: refused for the super-user too.
  QFile obstacle(folder.filePath(u"obstacle"_s));
  ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
  CVDefaultPreferences settings(
      defaults::UserDefaults::open(obstacle.fileName() + u"/settings.json"_s));
  const auto observer = std::make_shared<NiceMock<Observer>>();
  settings.setObserver(observer);
  Error reported;
  EXPECT_CALL(*observer, settingsCouldNotBeSaved(_)).WillOnce(testing::SaveArg<0>(&reported));
  settings.setMargin(3);
  EXPECT_THAT(reported.localizedDescription.toStdString(), testing::HasSubstr("obstacle"));
  EXPECT_EQ(settings.margin(), 3U);
}

TEST_F(Persistence, TwoProgramsNeverLeaveAMixedFile) {
  const auto first = store();
  const auto second = store();
  for (int round = 0; round < 20; ++round) {
    for (const auto& program : {first, second}) {
      const QString value = program == first ? u"first"_s : u"second"_s;
      for (const QString& key : {u"format"_s, u"theme"_s, u"notes"_s})
        program->setString(value, key);
      ASSERT_FALSE(program->synchronize());
      const auto seen = store();
      ASSERT_FALSE(seen->openingError());
      EXPECT_EQ(seen->stringForKey(u"format"_s), value);
      EXPECT_EQ(seen->stringForKey(u"notes"_s), value);
    }
  }
}

}  // namespace
