#include <gtest/gtest.h>

#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>

#include "Program.h"
#include "platform/base/SystemVersion.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVError.h"
#include "support/Wait.h"
#include "ui/controls/CVDragView.h"
#include "ui/controls/CVHoverButton.h"
#include "ui/controls/CVProgressIndicator.h"
#include "ui/controls/CVWhiteView.h"
#include "ui/look/Theme.h"
#include "ui/window/ArrowAnimation.h"
#include "ui/window/DropZoneView.h"
#include "ui/window/ElidedLabel.h"

using namespace Qt::StringLiterals;
using test::child;
using test::Program;

namespace {

int contentHeight(const Program& program) {
  return program.window->centralWidget()->height();
}

bool reachesHeight(const Program& program, int height) {
  return support::waitFor([&] { return contentHeight(program) == height; },
                          std::chrono::seconds(5));
}

}  // namespace

TEST(BatchCommands, followTheStatesOfTheEntries) {
  using State = std::vector<CVEntryState>;
  struct {
    State states;
    bool batch, process, clear, clearCompleted;
  } const cases[] = {
      {{}, false, false, false, false},
      {{CVEntryStateWaiting, CVEntryStateDownloading}, false, false, true, false},
      {{CVEntryStateProcessing}, false, false, true, false},
      {{CVEntryStateDownloaded}, false, true, true, false},
      {{CVEntryStateDone}, false, true, true, true},
      {{CVEntryStateDone, CVEntryStateDownloaded}, true, true, true, true},
      {{CVEntryStateDownloaded, CVEntryStateDownloaded}, true, true, true, false},
  };
  for (const auto& expected : cases) {
    std::vector<std::shared_ptr<CVEntry>> entries;
    for (CVEntryState state : expected.states) {
      entries.push_back(std::make_shared<test::Entry>());
      entries.back()->setState(state);
    }
    const auto commands = ui::BatchState::of(entries);
    EXPECT_EQ(commands.enableBatch, expected.batch);
    EXPECT_EQ(commands.enableProcessAll, expected.process);
    EXPECT_EQ(commands.enableClearAll, expected.clear);
    EXPECT_EQ(commands.enableClearCompleted, expected.clearCompleted);
  }
}

TEST(ArrowAnimation, goesThroughFifteenPicturesAndBeginsAgainAtTheFirst) {
  QStringList shown;
  ui::ArrowAnimation arrow([&shown](const QString& name) { shown += name; });
  arrow.startAnimatingArrow();
  for (int frame = 0; frame < 16; ++frame)
    arrow.updateArrowFrame();
  EXPECT_EQ(shown.first(), u"arrow-down_01@2X.png"_s);
  EXPECT_EQ(shown[1], u"arrow-down_01@2x.png"_s);
  EXPECT_EQ(shown[15], u"arrow-down_15@2x.png"_s);
  EXPECT_EQ(shown[16], u"arrow-down_01@2x.png"_s);
  arrow.startAnimatingArrow();
  EXPECT_TRUE(support::waitFor([&] { return shown.size() >= 19; }));
  EXPECT_EQ(shown[18], u"arrow-down_01@2x.png"_s);
  arrow.stopAnimatingArrow();
  EXPECT_FALSE(arrow.isRunning());
}

TEST(MainWindow, isAsHighAsItsRowsUpToTheQueueSize) {
  Program program;
  program.preferences().setQueueSize(3);
  EXPECT_TRUE(reachesHeight(program, 150 + 67)) << contentHeight(program);
  const QPoint corner = program.window->pos();
  program.add();
  EXPECT_TRUE(reachesHeight(program, 150 + 67 + 130)) << contentHeight(program);
  for (int page = 0; page < 4; ++page)
    program.add();
  EXPECT_TRUE(reachesHeight(program, 150 + 67 + 3 * 130)) << contentHeight(program);
  EXPECT_EQ(program.window->pos(), corner);
  program.delegate->clearAll();
  EXPECT_TRUE(reachesHeight(program, 150 + 67)) << contentHeight(program);
}

TEST(MainWindow, saysHowToBeginOnlyWhileTheQueueIsEmpty) {
  Program program;
  auto& hint = child<QWidget>(*program.window, "hintLabel");
  EXPECT_TRUE(hint.isVisible());
  program.add();
  EXPECT_TRUE(support::waitFor([&] { return !hint.isVisible(); }));
}

TEST(MainWindow, theBatchButtonComesWithTheFirstEntry) {
  Program program;
  auto& batch = child<QToolButton>(*program.window, "batchButton");
  EXPECT_FALSE(batch.isVisible());
  program.add(CVEntryStateDone);
  EXPECT_TRUE(support::waitFor([&] { return batch.isVisible(); }));
  EXPECT_TRUE(program.window->batchState().enableProcessAll);
  EXPECT_FALSE(program.window->batchState().enableBatch);
  program.add(CVEntryStateDone);
  EXPECT_TRUE(support::waitFor([&] { return program.window->batchState().enableBatch; }));
}

TEST(MainWindow, whileBusyTheZoneIsClosedAndTheArrowRests) {
  Program program;
  auto& zone = child<CVDragView>(*program.window, "dragView");
  auto& spinner = child<CVProgressIndicator>(*program.window, "busyIndicator");
  auto& label = child<ui::ElidedLabel>(*program.window, "stateLabel");
  EXPECT_TRUE(zone.dragEnabled());
  program.delegate->setState(u"Processing all items..."_s);
  Program::settle();
  EXPECT_FALSE(zone.dragEnabled());
  EXPECT_TRUE(spinner.isVisible());
  EXPECT_EQ(label.fullText(), u"Processing all items..."_s);
  program.delegate->restoreState();
  Program::settle();
  EXPECT_TRUE(zone.dragEnabled());
  EXPECT_FALSE(spinner.isVisible());
  EXPECT_EQ(label.fullText(), QString());
}

TEST(MainWindow, aStateTextOfMegabytesIsShortened) {
  ui::ElidedLabel label;
  label.resize(200, 20);
  label.setFullText(QString(5'000'000, u'x'));
  EXPECT_LE(label.toolTip().size(), 2001);
  label.grab();
}

TEST(MainWindow, showsTheZoneThatADragIsOver) {
  Program program;
  auto& zone = child<CVDragView>(*program.window, "dragView");
  auto& ground = child<ui::DropZoneView>(*program.window, "dropZoneImageView");
  const QImage before = ground.grab().toImage();
  Q_EMIT zone.dragHoverChanged(true);
  EXPECT_TRUE(ground.isDragHovering());
  EXPECT_NE(ground.grab().toImage(), before);
}

TEST(MainWindow, aChangedThemeIsSeenAtOnce) {
  Program program;
  program.add();
  program.preferences().setTheme(u"dark"_s);
  Program::settle();
  EXPECT_EQ(&ui::Theme::current(), &ui::Theme::dark());
  const QImage dark = program.window->grab().toImage();
  EXPECT_EQ(dark.pixelColor(3, dark.height() - 3), ui::Theme::dark().window);
  program.preferences().setTheme(u"light"_s);
  Program::settle();
  const QImage light = program.window->grab().toImage();
  EXPECT_EQ(light.pixelColor(3, light.height() - 3), ui::Theme::light().window);
}

TEST(MainWindow, theAddButtonShowsWhatItWillDo) {
  Program program;
  auto& add = child<QToolButton>(*program.window, "addButton");
  const auto picture = [&] { return add.icon().pixmap(20, 20).toImage(); };
  const QImage choices = picture();
  program.preferences().setAddButtonBehaviour(u"chrome"_s);
  Program::settle();
  const QImage chrome = picture();
  program.preferences().setAddButtonBehaviour(u"safari"_s);
  Program::settle();
  EXPECT_NE(chrome, choices);
  EXPECT_NE(picture(), chrome);
  add.click();  // no browser answers: no popover, no effect
  Program::settle();
  EXPECT_FALSE(program.window->addPopover());
  EXPECT_TRUE(program.sounds->played.isEmpty());
}

TEST(MainWindow, theSnapEffectFlashesHalfWhiteAndClicks) {
  Program program;
  program.delegate->snapEffect();
  double strongest = 0;
  const auto flash = [&] { return program.window->centralWidget()->findChild<CVWhiteView*>(); };
  ASSERT_TRUE(support::waitFor([&] { return flash() != nullptr; }));
  EXPECT_TRUE(support::waitFor([&] {
    if (flash()) strongest = qMax(strongest, flash()->alphaValue());
    return flash() == nullptr;
  }));
  EXPECT_GT(strongest, 0.2);
  EXPECT_LE(strongest, 0.5);
  EXPECT_EQ(program.sounds->played, QStringList{u"click.aiff"_s});
  program.preferences().setSnapEffect(false);
  program.delegate->snapEffect();
  Program::settle();
  EXPECT_EQ(program.sounds->played.size(), 1);
}

TEST(MainWindow, quickActionsDependOnTheRelease) {
  const std::tuple<int, int, int> cases[] = {{10, 15, 7}, {10, 13, 0}, {10, 12, 1}, {10, 11, 6}};
  const bool expected[] = {true, true, false, false};
  for (int index = 0; index < 4; ++index) {
    const auto [major, minor, patch] = cases[index];
    SystemVersionOverride release(SystemVersion{major, minor, patch});
    Program program;
    const auto* strip = program.window->findChild<QWidget*>(u"quickActions"_s);
    EXPECT_EQ(strip->isVisible(), expected[index]) << minor << '.' << patch;
    EXPECT_EQ(strip->findChildren<CVHoverButton*>().size(), expected[index] ? 2 : 0);
  }
}

TEST(MainWindow, everyCommandIsInAMenuWithAKeyOfItsOwn) {
  Program program;
  QStringList keys;
  int commands = 0;
  for (QAction* menu : program.window->menuBar()->actions()) {
    for (QAction* action : menu->menu()->actions()) {
      if (action->isSeparator()) continue;
      ++commands;
      if (!action->shortcut().isEmpty()) keys += action->shortcut().toString();
    }
  }
  EXPECT_GE(commands, 16);
  EXPECT_GE(keys.size(), 15);
  EXPECT_EQ(keys.removeDuplicates(), 0);
}

TEST(MainWindow, helpIsThereWithoutANetwork) {
  Program program;
  program.window->onShowHelp();
  auto& text = child<QTextBrowser>(*program.window, "helpText");
  EXPECT_TRUE(text.isVisible());
  EXPECT_TRUE(text.toPlainText().contains(u"Alt+Up, Alt+Down"_s)) << "the keys are not told";
  QPointer<QWidget> help = text.window();
  QTest::keyClick(&text, Qt::Key_Escape);
  Program::settle();
  EXPECT_FALSE(help);
  EXPECT_TRUE(program.window->isVisible());
}

TEST(MainWindow, closingItEndsTheProgram) {
  Program program;
  program.window->close();
  EXPECT_EQ(program.terminated, 1);
}
