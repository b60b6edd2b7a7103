#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "Program.h"
#include "support/Wait.h"
#include "ui/popovers/Popover.h"
#include "ui/queue/EntryRowView.h"
#include "ui/queue/QueueTableView.h"

using namespace Qt::StringLiterals;
using test::Program;

namespace {

QString accessibleName(QWidget* widget) {
  const auto* interface = QAccessible::queryAccessibleInterface(widget);
  return interface ? interface->text(QAccessible::Name) : QString();
}

/// The names of the controls that the Tab key reaches, from the window's first on.
QStringList tabOrder(QWidget& window) {
  QStringList names;
  QWidget* start = window.nextInFocusChain();
  for (QWidget* widget = start;;) {
    if (widget->isVisibleTo(&window) && widget->isEnabled() &&
        (widget->focusPolicy() & Qt::TabFocus)) {
      names += widget->objectName();
    }
    widget = widget->nextInFocusChain();
    if (widget == start) return names;
  }
}

void expectNamed(QWidget& window) {
  int controls = 0;
  for (QWidget* control : window.findChildren<QWidget*>()) {
    const bool used = qobject_cast<QAbstractButton*>(control) ||
                      qobject_cast<QLineEdit*>(control) || qobject_cast<ui::EntryRowView*>(control);
    if (!used || control->objectName().startsWith(u"qt_"_s)) continue;
    ++controls;
    EXPECT_FALSE(accessibleName(control).isEmpty())
        << control->metaObject()->className() << ' ' << control->objectName().toStdString();
    const auto* button = qobject_cast<QAbstractButton*>(control);
    if (button && button->text().isEmpty() && button->objectName().endsWith(u"Button"_s) &&
        control->window() == &window && !control->property("flat").toBool()) {
      EXPECT_FALSE(button->toolTip().isEmpty()) << control->objectName().toStdString();
    }
  }
  EXPECT_GT(controls, 2);
}

}  // namespace

TEST(Accessibility, everyControlHasANameAndEveryIconATooltip) {
  Program program;
  program.add();
  program.delegate->addWarning(u"A warning"_s);
  Program::settle();
  expectNamed(*program.window);
  program.window->onAdd();
  expectNamed(*program.window->addPopover());
  program.window->closeAddPopover();
  Program::settle();
  program.window->onBatch();
  expectNamed(*program.window->batchPopover());
}

TEST(Accessibility, theOpenPopoverIsAPartOfTheWindow) {
  Program program;
  auto* window = QAccessible::queryAccessibleInterface(program.window.get());
  const int before = window->childCount();
  program.window->onBatch();
  ASSERT_EQ(window->childCount(), before + 1);
  const auto* popover = window->child(before);
  ASSERT_TRUE(popover);
  EXPECT_EQ(popover->object(), program.window->batchPopover());
  EXPECT_EQ(popover->role(), QAccessible::Dialog);
  EXPECT_EQ(popover->text(QAccessible::Name), u"Commands for the queue"_s);
  EXPECT_EQ(popover->parent(), window);
  EXPECT_EQ(window->indexOfChild(popover), before);
  program.window->closeBatchPopover();
  Program::settle();
  EXPECT_EQ(window->childCount(), before);
}

TEST(Accessibility, aRowSaysTitleAddressAndStateAndHasItsRole) {
  Program program;
  program.add(CVEntryStateDone, u"A page"_s);
  auto* table = program.window->findChild<ui::QueueTableView*>();
  table->layoutRows();
  auto* row = table->findChild<ui::EntryRowView*>();
  ASSERT_TRUE(row);
  row->setFocus();
  Program::settle();
  EXPECT_EQ(accessibleName(row), u"http://127.0.0.1/page, Done..."_s)
      << "a title that came after loading is not shown";
  const auto* interface = QAccessible::queryAccessibleInterface(row);
  ASSERT_TRUE(interface);
  EXPECT_EQ(interface->role(), QAccessible::ListItem);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(table)->role(), QAccessible::List);
}

TEST(Accessibility, tabGoesFromTheQueueToTheBar) {
  Program program;
  program.add();
  program.add();
  program.window->activateWindow();
  auto* table = program.window->findChild<ui::QueueTableView*>();
  table->layoutRows();
  auto* first = static_cast<ui::EntryRowView*>(program.table->tableViewViewForRow(0));
  first->setFocus();
  Program::settle();
  const QStringList order = tabOrder(*program.window);
  const QStringList expected{u"titleTextField"_s, u"urlButton"_s, u"adjustButton"_s,
                             u"processButton"_s, u"removeButton"_s};
  const auto begin = order.indexOf(u"CVEntryViewController"_s);
  ASSERT_GE(begin, 0);
  QStringList inRow = order.mid(begin + 1, expected.size() + 1);
  inRow.removeAll(u"downButton"_s);
  EXPECT_EQ(inRow, expected) << order.join(u' ').toStdString();
  EXPECT_GT(order.indexOf(u"addButton"_s), order.lastIndexOf(u"CVEntryViewController"_s))
      << order.join(u' ').toStdString();
  EXPECT_GT(order.indexOf(u"batchButton"_s), order.indexOf(u"addButton"_s));
}

TEST(Accessibility, rightToLeftAndLargeTextKeepEverythingInItsRow) {
  const QFont usual = QApplication::font();
  for (const bool rightToLeft : {false, true}) {
    QApplication::setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    Program program;
    program.add(CVEntryStateDone, QString(400, u'W'));
    auto* table = program.window->findChild<ui::QueueTableView*>();
    table->layoutRows();
    auto* row = table->findChild<ui::EntryRowView*>();
    QFont large = usual;
    large.setPixelSize(18);
    for (const char* text : {"titleTextField", "urlButton", "stateLabel"}) {
      test::child<QWidget>(*row, text).setFont(large);
    }
    row->setFocus();
    row->show();
    Program::settle();
    const QWidget* thumbnail = row->findChild<QWidget*>(u"thumbnailFrame"_s);
    EXPECT_EQ(thumbnail->x() > row->width() / 2, rightToLeft);
    for (QWidget* part : row->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (part->isVisible()) {
        EXPECT_TRUE(row->rect().contains(part->geometry())) << part->objectName().toStdString();
      }
    }
    EXPECT_GE(QFontInfo(test::child<QWidget>(*program.window, "hintLabel").font()).pixelSize(), 11);
  }
  QApplication::setLayoutDirection(Qt::LeftToRight);
}
