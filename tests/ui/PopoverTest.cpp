#include <gtest/gtest.h>

#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QToolButton>

#include "Program.h"
#include "settings/CVDefaultPreferences.h"
#include "support/Wait.h"
#include "ui/controls/CVPlainButton.h"
#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"
#include "ui/popovers/CVAddPopoverController.h"
#include "ui/popovers/CVBatchPopoverController.h"
#include "ui/popovers/CVWarningEntryController.h"
#include "ui/popovers/CVWarningPopoverController.h"
#include "ui/popovers/Popover.h"

using namespace Qt::StringLiterals;
using test::child;
using test::Program;

namespace {

QColor labelColour(QWidget& popover, const char* name) {
  return child<QLabel>(popover, name).palette().color(QPalette::WindowText);
}

bool offered(QWidget& popover, const char* button) {
  return child<QWidget>(popover, button).isVisibleTo(&popover);
}

}  // namespace

TEST(AddPopover, offersOnlyRunningBrowsersAndGreysTheOthers) {
  Program program;
  for (const bool running : {false, true}) {
    CVAddPopoverController popover({.showSafari = false, .showChrome = running});
    EXPECT_TRUE(offered(popover, "pasteURLButton"));
    EXPECT_FALSE(offered(popover, "urlFromSafariButton"));
    EXPECT_EQ(offered(popover, "urlFromChromeButton"), running);
    EXPECT_EQ(child<QWidget>(popover, "urlFromChromeImageView").isEnabled(), running);
    EXPECT_EQ(labelColour(popover, "urlFromSafariTextField"), ui::Theme::light().secondaryText);
    EXPECT_EQ(labelColour(popover, "urlFromChromeTextField"),
              running ? ui::Theme::light().text : ui::Theme::light().secondaryText);
    EXPECT_EQ(child<QWidget>(popover, "urlFromChromeRow").toolTip().isEmpty(), running);
  }
}

TEST(AddPopover, thePasteIconTurnsWhiteUnderThePointerInTheLightThemeOnly) {
  Program program;
  const QImage white = ui::namedPixmap(u"icon-paste-light-white@2x.png"_s, 1).toImage();
  const QImage grey = ui::namedPixmap(u"icon-paste-light-grey@2x.png"_s, 1).toImage();
  for (const bool dark : {false, true}) {
    program.preferences().setTheme(dark ? u"dark"_s : u"light"_s);
    CVAddPopoverController popover({});
    const auto icon = [&] {
      return child<QLabel>(popover, "pasteURLImageView").pixmap().toImage();
    };
    EXPECT_EQ(icon(), dark ? white : grey);
    popover.onHover(true);
    EXPECT_EQ(icon(), white);
    popover.onHover(false);
    EXPECT_EQ(icon(), dark ? white : grey);
  }
}

TEST(BatchPopover, offersWhatTheQueueHasWorkFor) {
  Program program;
  CVBatchPopoverController one(
      {.enableBatch = false, .enableProcessAll = true, .enableClearAll = true});
  for (const char* merge : {"saveMultipageVectorButton", "emailMultipageVectorButton",
                            "saveMultipageImageButton", "emailMultipageImageButton"}) {
    EXPECT_FALSE(offered(one, merge)) << merge;
  }
  EXPECT_TRUE(offered(one, "processAllButton"));
  EXPECT_TRUE(offered(one, "clearAllButton"));
  EXPECT_FALSE(offered(one, "clearCompletedButton"));
  EXPECT_EQ(labelColour(one, "clearCompletedField"), ui::Theme::light().secondaryText);
  EXPECT_EQ(labelColour(one, "clearAllField"), ui::Theme::light().text);
}

TEST(BatchPopover, itsCommandsReachTheQueue) {
  Program program;
  program.add(CVEntryStateDone);
  program.add(CVEntryStateDownloaded);
  support::waitFor([&] { return program.window->batchState().enableClearCompleted; });
  program.window->onBatch();
  ASSERT_TRUE(program.window->batchPopover());
  child<QPushButton>(*program.window->batchPopover(), "clearCompletedButton").click();
  EXPECT_EQ(program.table->numberOfRowsInTableView(), 1);
  EXPECT_TRUE(support::waitFor([&] { return program.window->batchPopover() == nullptr; }))
      << "the command closes the popover";
  program.window->onBatch();
  child<QPushButton>(*program.window->batchPopover(), "clearAllButton").click();
  EXPECT_EQ(program.table->numberOfRowsInTableView(), 0);
}

TEST(WarningPopover, isSixtyPointsHighForEachWarningAndBounded) {
  QStringList warnings;
  for (int number = 0; number < 5; ++number)
    warnings += u"Warning %1"_s.arg(number);
  CVWarningPopoverController popover(warnings);
  EXPECT_EQ(popover.height(), 300);
  const auto rows = popover.findChildren<CVWarningEntryController*>();
  ASSERT_EQ(rows.size(), 5);
  EXPECT_EQ(child<QLabel>(*rows[3], "warningField").text(), u"Warning 3"_s);
  for (const auto* row : rows)
    EXPECT_EQ(row->height(), 60);
}

TEST(WarningPopover, showsEachWarningOnceUnderItsNumber) {
  Program program;
  auto& button = child<QToolButton>(*program.window, "warningButton");
  EXPECT_FALSE(button.isVisible());
  for (const QString& text : {u"One"_s, u"Two"_s, u"One"_s})
    program.delegate->addWarning(text);
  EXPECT_TRUE(support::waitFor([&] { return button.isVisible(); }));
  Program::settle();
  EXPECT_EQ(button.text(), u"2"_s);
  button.click();
  ASSERT_TRUE(program.window->warningPopover());
  EXPECT_EQ(program.window->warningPopover()->findChild<CVWarningPopoverController*>()->warnings(),
            (QStringList{u"One"_s, u"Two"_s}));
}

TEST(Popover, pointsAtItsButtonAndStaysOnTheScreen) {
  Program program;
  const QRect screen = program.window->screen()->availableGeometry();
  auto& add = child<QToolButton>(*program.window, "addButton");
  for (const QPoint& corner : {screen.topLeft(), QPoint(screen.left(), screen.bottom() - 240),
                               QPoint(screen.right() - 440, screen.center().y())}) {
    program.window->move(corner);
    Program::settle();
    program.window->onAdd();
    const ui::Popover* popover = program.window->addPopover();
    ASSERT_TRUE(popover);
    EXPECT_TRUE(screen.contains(popover->body().translated(popover->pos())));
    const QPoint middle = add.mapToGlobal(add.rect().center());
    EXPECT_NEAR(popover->mapToGlobal(popover->arrowTip()).x(), middle.x(), 1);
    const bool above = popover->edge() == ui::Popover::Edge::Above;
    const int tip = popover->mapToGlobal(popover->arrowTip()).y();
    const int edge = add.mapToGlobal(QPoint(0, above ? 0 : add.height())).y();
    EXPECT_NEAR(tip, edge, 2);
    program.window->closeAddPopover();
    Program::settle();
  }
}

TEST(Popover, isWalkedAndLeftByKeyboardAndRestoresItsButton) {
  Program program;
  auto& add = child<QToolButton>(*program.window, "addButton");
  const QImage idle = add.icon().pixmap(20, 20).toImage();
  program.window->onAdd();
  EXPECT_NE(add.icon().pixmap(20, 20).toImage(), idle);
  QTest::keyClick(program.window->addPopover(), Qt::Key_Escape);
  EXPECT_TRUE(support::waitFor([&] { return program.window->addPopover() == nullptr; }));
  EXPECT_EQ(add.icon().pixmap(20, 20).toImage(), idle);
}
