#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QToolButton>

#include "Program.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "support/Wait.h"
#include "ui/look/Theme.h"
#include "ui/preferences/CVGeneralPreferencesViewController.h"
#include "ui/preferences/CVPreferencesWindowController.h"
#include "ui/preferences/CVSaveSheet.h"
#include "ui/preferences/CVSnapshotPreferencesViewController.h"
#include "ui/preferences/PreferencesPane.h"

using namespace Qt::StringLiterals;
using test::child;
using test::Program;

namespace {

void type(QWidget& pane, const char* field, const QString& text) {
  auto& edit = child<QLineEdit>(pane, field);
  edit.selectAll();
  QTest::keyClicks(&edit, text);
  QTest::keyClick(&edit, Qt::Key_Return);
}

/// As a user picks it.
void pick(QWidget& pane, const char* menu, const QString& title) {
  auto& box = child<QComboBox>(pane, menu);
  const int index = box.findText(title);
  ASSERT_GE(index, 0) << title.toStdString();
  box.setCurrentIndex(index);
  Q_EMIT box.textActivated(title);
}

QStringList items(QWidget& pane, const char* menu) {
  const auto& box = child<QComboBox>(pane, menu);
  QStringList titles;
  for (int index = 0; index < box.count(); ++index)
    titles += box.itemText(index);
  return titles;
}

bool shown(QWidget& pane, const char* part) {
  return !child<QWidget>(pane, part).isHidden();
}

bool enabled(QWidget& pane, const char* part) {
  return child<QWidget>(pane, part).isEnabled();
}

class Preferences : public ::testing::Test {
 protected:
  CVDefaultPreferences& settings() { return program.preferences(); }
  std::shared_ptr<CVDefaultPreferences> shared() {
    return CVObjectRepository::singleton().getPreferences();
  }
  Program program;
};

class SnapshotPane : public Preferences {
 protected:
  SnapshotPane() {
    pane.setResizeBlock([this] { ++resized; });
    pane.setPreferences(shared());
    pane.show();
    resized = 0;
  }
  CVSnapshotPreferencesViewController pane;
  int resized = 0;
};

}  // namespace

TEST(IntegerValue, readsTheNumberThatATextBeginsWith) {
  const std::pair<QString, qint64> cases[] = {{u"12"_s, 12},  {u" -5 pt"_s, -5}, {u"3.9"_s, 3},
                                              {u""_s, 0},     {u"x1"_s, 0},      {u"+7"_s, 7},
                                              {u"1 000"_s, 1}};
  for (const auto& [text, value] : cases)
    EXPECT_EQ(ui::integerValue(text), value);
}

TEST_F(Preferences, numbersThatMakeNoSenseAreReplaced) {
  CVGeneralPreferencesViewController pane;
  pane.setupWithPreferences(shared());
  struct {
    const char* field;
    QString typed;
    std::uint64_t (CVDefaultPreferences::*get)() const;
    std::uint64_t stored;
  } const cases[] = {
      {"maximumNumberOfDownloadsTextField", u"0"_s,
       &CVDefaultPreferences::maximumNumberOfConcurrentDonwloads, 1},
      {"maximumNumberOfDownloadsTextField", u"7"_s,
       &CVDefaultPreferences::maximumNumberOfConcurrentDonwloads, 7},
      {"queueSizeTextField", u"0"_s, &CVDefaultPreferences::queueSize, 3},
      {"queueSizeTextField", u"-2"_s, &CVDefaultPreferences::queueSize, 3},
      {"queueSizeTextField", u"6"_s, &CVDefaultPreferences::queueSize, 6},
      {"defaultSnapshotWidthTextField", u"0"_s, &CVDefaultPreferences::defaultSnapshotWidth, 1024},
      {"defaultSnapshotWidthTextField", u"800"_s, &CVDefaultPreferences::defaultSnapshotWidth, 800},
  };
  for (const auto& [field, typed, get, stored] : cases) {
    type(pane, field, typed);
    EXPECT_EQ((settings().*get)(), stored) << field << ' ' << typed.toStdString();
    EXPECT_EQ(child<QLineEdit>(pane, field).text(), QString::number(stored));
  }
}

TEST_F(Preferences, everyBoxStoresItsOwnSettingAtOnce) {
  CVGeneralPreferencesViewController pane;
  pane.setupWithPreferences(shared());
  const std::pair<const char*, bool (CVDefaultPreferences::*)() const> boxes[] = {
      {"processAutomaticallyButton", &CVDefaultPreferences::processAutomatically},
      {"automaticallyRemoveButton", &CVDefaultPreferences::automaticallyRemoveFromQueueOncePrinted},
      {"prependTitleButton", &CVDefaultPreferences::prependTitleWithWebsiteDomain},
      {"snapEffectButton", &CVDefaultPreferences::snapEffect},
      {"systemNotificationsButton", &CVDefaultPreferences::systemNotifications},
      {"disableIFramesButton", &CVDefaultPreferences::enableIFrames}};
  for (const auto& [name, get] : boxes) {
    auto& box = child<QCheckBox>(pane, name);
    EXPECT_EQ(box.isChecked(), (settings().*get)()) << name;
    for (int press = 0; press < 2; ++press) {
      box.click();
      EXPECT_EQ((settings().*get)(), box.isChecked()) << name;
    }
  }
}

TEST_F(Preferences, batchModeLocksTheFourOptionsThatItDecides) {
  CVGeneralPreferencesViewController pane;
  pane.setupWithPreferences(shared());
  const char* locked[] = {"processAutomaticallyButton", "automaticallyRemoveButton",
                          "snapEffectButton", "systemNotificationsButton"};
  for (const bool batch : {true, false}) {
    child<QCheckBox>(pane, "batchModeButton").click();
    EXPECT_EQ(settings().batchMode(), batch);
    for (const char* name : locked)
      EXPECT_EQ(enabled(pane, name), !batch) << name;
    EXPECT_TRUE(enabled(pane, "prependTitleButton"));
  }
}

TEST_F(Preferences, choicesAreStoredInLowerCaseAndApplyAtOnce) {
  CVGeneralPreferencesViewController pane;
  pane.setupWithPreferences(shared());
  pick(pane, "themePopupButton", u"Dark"_s);
  Program::settle();
  EXPECT_EQ(settings().theme(), u"dark"_s);
  EXPECT_EQ(&ui::Theme::current(), &ui::Theme::dark());
  pick(pane, "addButtonBehaviourPopupButton", u"Show Choices"_s);
  EXPECT_EQ(settings().addButtonBehaviour(), u"show choices"_s);
  pick(pane, "addButtonBehaviourPopupButton", u"Chrome"_s);
  settings().setAddButtonBehaviour(u"unheard of"_s);
  pane.setupWithPreferences(shared());
  EXPECT_EQ(child<QComboBox>(pane, "addButtonBehaviourPopupButton").currentText(), u"Chrome"_s);
  type(pane, "queueSizeTextField", u"9"_s);
  child<QPushButton>(pane, "revertButton").click();
  Program::settle();
  EXPECT_EQ(child<QLineEdit>(pane, "queueSizeTextField").text(),
            QString::number(settings().queueSize()));
  EXPECT_NE(settings().queueSize(), 9U);
  EXPECT_EQ(child<QComboBox>(pane, "themePopupButton").currentText().toLower(), settings().theme());
}

TEST_F(Preferences, theWindowFollowsTheHeightOfItsPane) {
  program.window->onShowPreferences();
  auto& window = *program.window->preferencesWindow();
  auto& switcher = window.preferencesViewController();
  using Pane = CVPreferencesViewController::Pane;
  std::set<int> heights;
  for (const Pane pane : {Pane::Dropbox, Pane::General, Pane::Snapshot}) {
    switcher.display(pane);
    EXPECT_TRUE(support::waitFor([&] { return window.height() == switcher.height() + 20; }));
    heights.insert(window.height());
    int visible = 0;
    for (QWidget* child : switcher.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (child->objectName() == u"tabs"_s || child->isHidden()) continue;
      ++visible;
      EXPECT_EQ(child->y(), 64);
      EXPECT_EQ(switcher.height(), child->height() + 64);
    }
    EXPECT_EQ(visible, 1);
  }
  EXPECT_EQ(heights.size(), 3U);
  settings().setUsePagination(false);
  switcher.display(Pane::Snapshot);
  const int before = switcher.height();
  child<QCheckBox>(switcher, "usePaginationButton").click();
  EXPECT_GT(switcher.height(), before);
  EXPECT_TRUE(support::waitFor([&] { return window.height() == switcher.height() + 20; }));
}

TEST_F(Preferences, thePlainRecordOfAnEntryIsEditedAsAnAccessory) {
  CVPreferencesViewController accessory(settings().copyWithZone(), nullptr);
  EXPECT_TRUE(accessory.asAccessoryView());
  CVPreferencesViewController window(shared(), nullptr);
  EXPECT_FALSE(window.asAccessoryView());
  const QSize before = accessory.size();
  accessory.display(CVPreferencesViewController::Pane::Snapshot);
  EXPECT_EQ(accessory.size(), before);
  const auto* pane = accessory.findChild<CVSnapshotPreferencesViewController*>();
  EXPECT_NEAR(pane->y(), before.height() / 2 - pane->height() / 2 + 32, 1);
}

TEST_F(Preferences, theDropboxPaneLinksAndUnlinks) {
  bool linked = false;
  settings().setDropboxLinkedProvider([&linked] { return linked; });
  QWidget parent;
  parent.show();
  CVDropBoxPreferencesViewController pane;
  QStringList done;
  pane.setAccount({[&done] { done += u"authorize"_s; }, [&done] { done += u"unlink"_s; }});
  pane.setParentWindow(&parent);
  for (const bool isLinked : {false, true}) {
    linked = isLinked;
    parent.show();
    pane.setupWithPreferences(shared());
    auto& button = child<QPushButton>(pane, "linkButton");
    EXPECT_EQ(button.text(), isLinked ? u"Unlink from DropBox"_s : u"Link to DropBox"_s);
    button.click();
    EXPECT_FALSE(parent.isVisible());
  }
  EXPECT_EQ(done, (QStringList{u"authorize"_s, u"unlink"_s}));
}

TEST_F(SnapshotPane, showsOnlyWhatTheFormatHas) {
  struct {
    const char* button;
    QString format;
    bool compression, modes;
  } const cases[] = {{"pdfButton", u"PDF"_s, false, true},   {"pngButton", u"PNG"_s, false, false},
                     {"jpegButton", u"JPEG"_s, true, false}, {"jp2Button", u"JP2"_s, true, false},
                     {"gifButton", u"GIF"_s, false, false},  {"bmpButton", u"BMP"_s, false, false},
                     {"tiffButton", u"TIFF"_s, false, false}};
  settings().setUsePagination(false);
  for (const auto& [button, format, compression, modes] : cases) {
    child<QToolButton>(pane, button).click();
    EXPECT_EQ(settings().format(), format);
    EXPECT_EQ(shown(pane, "compressionSlider"), compression) << button;
    EXPECT_EQ(shown(pane, "bestTextField"), compression) << button;
    EXPECT_EQ(shown(pane, "conversionModePopUpButton"), modes) << button;
    for (const auto& other : cases) {
      EXPECT_EQ(child<QToolButton>(pane, other.button).isChecked(), other.format == format);
    }
  }
}

TEST_F(SnapshotPane, aPrinterNeedsPagesAndHasNoModes) {
  settings().setUsePagination(true);
  pane.setupWithPreferences();
  pick(pane, "destinationButton", u"Printer"_s);
  EXPECT_EQ(settings().destination(), u"Printer"_s);
  EXPECT_FALSE(enabled(pane, "usePaginationButton"));
  EXPECT_FALSE(shown(pane, "conversionModePopUpButton"));
  pick(pane, "destinationButton", u"Disk"_s);
  EXPECT_TRUE(enabled(pane, "usePaginationButton"));
  EXPECT_TRUE(shown(pane, "conversionModePopUpButton"));
}

TEST_F(SnapshotPane, offersOnlyDestinationsThatCanBeReached) {
  bool linked = false;
  settings().setDropboxLinkedProvider([&linked] { return linked; });
  for (const bool pages : {false, true}) {
    for (const bool account : {false, true}) {
      linked = account;
      settings().setUsePagination(pages);
      pane.setupWithPreferences();
      const QStringList offered = items(pane, "destinationButton");
      EXPECT_EQ(offered.contains(u"Printer"_s), pages);
      EXPECT_EQ(offered.contains(u"DropBox"_s), account);
      EXPECT_EQ(offered.size(), 4 + pages + account);
    }
  }
}

TEST_F(SnapshotPane, pageSettingsComeAndGoWithPagination) {
  settings().setUsePagination(true);
  settings().setMargin(20);
  settings().setIncludeHeadersAndFooters(true);
  settings().setNotes(u"A note"_s);
  settings().setHeaderAndFooterFont(Font{u"Serif"_s, 12});
  pane.setupWithPreferences();
  EXPECT_TRUE(shown(pane, "paginationSettinsView"));
  EXPECT_EQ(child<QLineEdit>(pane, "marginTextField").text(), u"20"_s);
  EXPECT_TRUE(child<QCheckBox>(pane, "includeHeadersAndFootersButton").isChecked());
  EXPECT_EQ(child<QPushButton>(pane, "headersAndFootersFontButton").text(), u"Serif, 12 pt"_s);
  EXPECT_EQ(child<QPlainTextEdit>(pane, "notesTextView").toPlainText(), u"A note"_s);
  EXPECT_EQ(items(pane, "orientationPopUpButton"), (QStringList{u"Portrait"_s, u"Landscape"_s}));
  const int high = pane.height();
  resized = 0;

  child<QCheckBox>(pane, "usePaginationButton").click();
  EXPECT_FALSE(shown(pane, "paginationSettinsView"));
  EXPECT_LT(pane.height(), high);
  EXPECT_GE(resized, 1);
  EXPECT_EQ(child<QPushButton>(pane, "headersAndFootersFontButton").text(), u"Not Available"_s);
  EXPECT_EQ(items(pane, "orientationPopUpButton"), QStringList());
  EXPECT_EQ(settings().notes(), u"A note"_s) << "emptying the field is no edit";
  EXPECT_EQ(settings().margin(), 20U);
}

TEST_F(SnapshotPane, storesMarginNotesOrientationAndCompression) {
  settings().setUsePagination(true);
  pane.setupWithPreferences();
  type(pane, "marginTextField", u"-5"_s);
  EXPECT_EQ(settings().margin(), 0U);
  type(pane, "marginTextField", u"36"_s);
  EXPECT_EQ(settings().margin(), 36U);
  child<QPlainTextEdit>(pane, "notesTextView").setPlainText(u"New"_s);
  EXPECT_EQ(settings().notes(), u"New"_s);
  pick(pane, "orientationPopUpButton", u"Landscape"_s);
  EXPECT_EQ(settings().orientation(), 1);
  settings().setUsePagination(false);
  settings().setFormat(u"JPEG"_s);
  settings().setCompression(0.25F);
  pane.setupWithPreferences();
  auto& slider = child<QSlider>(pane, "compressionSlider");
  EXPECT_EQ(slider.value(), 750);
  QTest::keyClick(&slider, Qt::Key_Home);
  EXPECT_NEAR(settings().compression(), 1.0, 0.001);
  QTest::keyClick(&slider, Qt::Key_End);
  EXPECT_NEAR(settings().compression(), 0.0, 0.001);
}

TEST_F(SnapshotPane, inTheSaveSheetThePageSettingsStayAndAreGreyed) {
  auto record = settings().copyWithZone();
  record->setUsePagination(false);
  CVSnapshotPreferencesViewController accessory;
  int calls = 0;
  accessory.setResizeBlock([&calls] { ++calls; });
  accessory.setAsAccessoryView(true);
  accessory.setPreferences(record);
  accessory.show();
  EXPECT_TRUE(shown(accessory, "paginationSettinsView"));
  EXPECT_FALSE(enabled(accessory, "marginTextField"));
  EXPECT_FALSE(enabled(accessory, "orientationPopUpButton"));
  child<QCheckBox>(accessory, "usePaginationButton").click();
  EXPECT_TRUE(enabled(accessory, "marginTextField"));
  EXPECT_EQ(calls, 0);
  EXPECT_TRUE(record->usePagination());
}

TEST_F(Preferences, theSaveSheetEditsTheEntrysRecordAndAnswersOnce) {
  CVSaveSheet panel;
  panel.setMainWindow(program.window.get());
  const QUrl folder = QUrl::fromLocalFile(u"/tmp"_s);
  for (const bool accept : {true, false}) {
    auto record = settings().copyWithZone();
    record->setUsePagination(false);
    record->setFormat(u"PNG"_s);
    std::vector<std::optional<QUrl>> answers;
    panel.beginSheet(record, u"A/page"_s, folder,
                     [&answers](std::optional<QUrl> chosen) { answers.push_back(chosen); });
    auto* sheet = program.window->findChild<QDialog*>();
    ASSERT_TRUE(sheet);
    child<QToolButton>(*sheet, "jpegButton").click();
    EXPECT_EQ(record->format(), u"JPEG"_s);
    EXPECT_NE(settings().format(), u"JPEG"_s);
    accept ? sheet->accept() : sheet->reject();
    Program::settle();
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].has_value(), accept);
    EXPECT_EQ(answers[0].value_or(QUrl()).toLocalFile(), accept ? u"/tmp/A page"_s : QString());
  }
}

TEST_F(Preferences, anEntryCannotBeSavedWithoutAName) {
  CVSaveSheet panel;
  panel.setMainWindow(program.window.get());
  panel.beginSheet(settings().copyWithZone(), u"Page"_s, std::nullopt, [](const auto&) {});
  auto* sheet = program.window->findChild<QDialog*>();
  ASSERT_TRUE(sheet);
  child<QLineEdit>(*sheet, "nameField").setText(u"  "_s);
  auto* buttons = sheet->findChild<QDialogButtonBox*>();
  EXPECT_FALSE(buttons->button(QDialogButtonBox::Save)->isEnabled());
  child<QLineEdit>(*sheet, "nameField").setText(u"Page"_s);
  EXPECT_TRUE(buttons->button(QDialogButtonBox::Save)->isEnabled());
  sheet->reject();
  Program::settle();
}
