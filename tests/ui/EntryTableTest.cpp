#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <thread>

#include "Program.h"
#include "settings/CVDefaultPreferences.h"
#include "support/Wait.h"
#include "ui/look/Theme.h"
#include "ui/queue/EntryRowView.h"

using namespace Qt::StringLiterals;
using test::Program;

namespace {

class CountingDelegate : public CVEntryTableControllerDelegate {
 public:
  void entryTableControllerNumberOfEntriesChanged(CVEntryTable&) override { ++number; }
  void entryTableControllerStateOfEntriesChanged(CVEntryTable&) override { ++states; }
  std::atomic<int> number = 0;
  std::atomic<int> states = 0;
};

class EntryTable : public ::testing::Test {
 protected:
  EntryTable() : view(program.window->findChild<ui::QueueTableView*>()) {
    program.preferences().setSystemNotifications(false);
  }

  void addPages(int count) {
    for (int page = 0; page < count; ++page) {
      program.table->addEntry(std::make_shared<test::Entry>(QString::number(page)));
    }
    Program::settle();
  }

  /// The entries' numbers in the order of the queue.
  QString order() const {
    QString text;
    for (const auto& entry : program.table->getEntries())
      text += entry->initialURL().toString();
    return text;
  }

  Program program;
  ui::QueueTableView* view;
};

std::unique_ptr<QMimeData> drag(const QByteArray& rows) {
  auto data = std::make_unique<QMimeData>();
  data->setData(u"public.data"_s, rows);
  return data;
}

}  // namespace

TEST_F(EntryTable, aDropMovesRowsToTheGap) {
  struct {
    QByteArray rows;
    int gap;
    QString expected;
  } const cases[] = {
      {"0\n1", 4, u"23014"_s}, {"4", 1, u"04123"_s},       {"0", 0, u"01234"_s},
      {"0", 5, u"12340"_s},    {"3\n4", 0, u"34012"_s},    {"1\n3", 2, u"01324"_s},
      {"4", 5, u"01234"_s},    {"9\nx\n2", 0, u"20134"_s},
  };
  for (const auto& [rows, gap, expected] : cases) {
    program.table->clearAll();
    addPages(5);
    EXPECT_TRUE(program.table->tableViewAcceptDrop(*drag(rows), gap, ui::DropOperation::Above));
    EXPECT_EQ(order(), expected) << rows.toStdString() << " to " << gap;
  }
}

TEST_F(EntryTable, aDropOntoARowIsRefused) {
  addPages(3);
  EXPECT_EQ(program.table->tableViewValidateDrop(1, ui::DropOperation::On), Qt::IgnoreAction);
  EXPECT_EQ(program.table->tableViewValidateDrop(1, ui::DropOperation::Above), Qt::MoveAction);
  const std::tuple<int, int, ui::DropOperation> places[] = {
      {5, 0, ui::DropOperation::Above},   {65, 0, ui::DropOperation::On},
      {125, 1, ui::DropOperation::Above}, {135, 1, ui::DropOperation::Above},
      {195, 1, ui::DropOperation::On},    {9000, 3, ui::DropOperation::Above}};
  for (const auto& [y, row, operation] : places) {
    EXPECT_EQ(view->proposedDropAt(y), std::make_pair(row, operation)) << y;
  }
  EXPECT_EQ(program.table->tableViewPasteboardWriterForRow(2)->data(u"public.data"_s), "2");
}

TEST_F(EntryTable, rowsMoveOneByOneAndStopAtTheEnds) {
  addPages(3);
  const auto press = [&](int row, Qt::Key key) {
    view->layoutRows();
    QWidget* widget = program.table->tableViewViewForRow(row);
    QTest::keyClick(widget, key, Qt::AltModifier);
    Program::settle();
  };
  press(1, Qt::Key_Up);
  EXPECT_EQ(order(), u"102"_s);
  press(1, Qt::Key_Down);
  EXPECT_EQ(order(), u"120"_s);
  press(0, Qt::Key_Up);
  press(2, Qt::Key_Down);
  EXPECT_EQ(order(), u"120"_s);
}

TEST_F(EntryTable, aMoveOutOfTheListIsIgnoredBelowTheControlsToo) {
  const auto table = CVEntryTableController::create({});
  std::vector<std::shared_ptr<CVEntry>> entries;
  for (int page = 0; page < 2; ++page) {
    entries.push_back(std::make_shared<test::Entry>(QString::number(page)));
    table->addEntry(entries.back());
  }
  const auto rowOf = [](const std::shared_ptr<CVEntry>& entry) {
    return std::dynamic_pointer_cast<CVEntryViewController>(entry->delegate());
  };
  table->entryViewControllerMustGoUp(*rowOf(entries[0]));
  table->entryViewControllerMustGoDown(*rowOf(entries[1]));
  EXPECT_EQ(table->getEntries(), entries);
  table->entryViewControllerMustGoDown(*rowOf(entries[0]));
  EXPECT_EQ(table->getEntries().front(), entries[1]);
}

TEST_F(EntryTable, tellsItsDelegateWhenTheCountChanges) {
  auto delegate = std::make_shared<CountingDelegate>();
  program.table->setDelegate(delegate);
  addPages(2);
  EXPECT_EQ(delegate->number, 2);
  program.table->removeEntry(std::make_shared<test::Entry>(u"0"_s));
  EXPECT_EQ(delegate->number, 2) << "an equal address is not the same entry";
  program.table->removeEntry(program.table->getEntries().front());
  EXPECT_EQ(delegate->number, 3);
  program.table->getEntries().front()->setState(CVEntryStateDownloaded);
  EXPECT_EQ(delegate->states, 1);
  program.table->clearCompleted();
  program.table->clearAll();
  program.table->clearAll();
  EXPECT_EQ(delegate->number, 6);
}

TEST_F(EntryTable, clearCompletedKeepsFailuresAndUnfinishedPages) {
  program.add(CVEntryStateDone, u"done"_s);
  program.add(CVEntryStateDone, u"failed"_s)->fail(CVEntryStateDone);
  program.add(CVEntryStateDownloaded, u"loaded"_s);
  program.add(CVEntryStateProcessing, u"working"_s);
  program.table->clearCompleted();
  QStringList titles;
  for (const auto& entry : program.table->getEntries())
    titles += *entry->title();
  EXPECT_EQ(titles, (QStringList{u"failed"_s, u"loaded"_s, u"working"_s}));
}

TEST_F(EntryTable, processesByItselfOnlyWhatLoadedAndOnlyIfAsked) {
  struct {
    bool automatic;
    MaybeError error;
    int processed;
  } const cases[] = {
      {false, std::nullopt, 0}, {true, std::nullopt, 1}, {true, Error{u"d"_s, 1, u"no"_s}, 0}};
  for (const auto& [automatic, error, processed] : cases) {
    program.preferences().setProcessAutomatically(automatic);
    auto entry = std::make_shared<test::Entry>();
    program.table->addEntry(entry);
    ASSERT_TRUE(support::waitFor([&] { return entry->prepared == 1; }));
    entry->endPreparing(error);
    auto later = std::make_shared<test::Entry>();  // its turn shows that the first had its own
    program.table->addEntry(later);
    ASSERT_TRUE(support::waitFor([&] { return later->prepared == 1; }));
    if (processed) support::waitFor([&] { return entry->processed == 1; });
    EXPECT_EQ(entry->processed, processed);
    later->endPreparing(Error{});
    entry->endProcessing();
    Program::settle();
  }
}

TEST_F(EntryTable, aSuccessfulPageLeavesIfTheUserWantsAndAFailedOneStays) {
  program.preferences().setAutomaticallyRemoveFromQueueOncePrinted(true);
  const auto good = program.add();
  const auto bad = program.add();
  bad->fail(CVEntryStateDone);
  good->setState(CVEntryStateDone);
  EXPECT_EQ(program.table->getEntries(), std::vector<std::shared_ptr<CVEntry>>{bad});
}

TEST_F(EntryTable, onlyRowsInSightHaveWidgetsAndTheFocusedOneIsKept) {
  addPages(200);
  view->layoutRows();
  const auto widgets = [this] { return view->findChildren<ui::EntryRowView*>().size(); };
  EXPECT_LE(widgets(), 8);
  auto* first = static_cast<ui::EntryRowView*>(program.table->tableViewViewForRow(0));
  program.window->activateWindow();
  first->setFocus();
  view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
  Program::settle();
  EXPECT_LE(widgets(), 8 + 12) << "those in sight and the spare ones";
  EXPECT_EQ(program.table->tableViewViewForRow(0), first);
  EXPECT_LT(first->y(), -130 * 100) << "out of sight, at its own place";
}

TEST_F(EntryTable, aWidgetThatIsUsedAgainShowsAndServesItsNewRow) {
  std::vector<std::shared_ptr<test::Entry>> pages;
  for (int page = 0; page < 60; ++page) {
    pages.push_back(program.add(CVEntryStateDownloading, QString::number(page)));
  }
  for (const auto& page : pages)
    page->setState(CVEntryStateDownloaded);
  Program::settle();
  for (const int row : {50, 3, 59, 20}) {
    view->verticalScrollBar()->setValue(row * 130);
    view->layoutRows();
    QWidget* widget = program.table->tableViewViewForRow(row);
    EXPECT_EQ(test::child<QLineEdit>(*widget, "titleTextField").text(), QString::number(row));
    test::child<QAbstractButton>(*widget, "adjustButton").click();
  }
  for (int page = 0; page < 60; ++page) {
    const bool pressed = page == 50 || page == 3 || page == 59 || page == 20;
    EXPECT_EQ(pages[std::size_t(page)]->adjusted, pressed ? 1 : 0) << page;
  }
}

TEST_F(EntryTable, theKeyboardGoesThroughTheRowsAndStaysWhenOneIsRemoved) {
  addPages(20);
  for (const auto& entry : program.table->getEntries())
    entry->setState(CVEntryStateDownloaded);
  Program::settle();
  program.window->activateWindow();
  ASSERT_TRUE(support::waitFor([&] { return view->height() == 3 * 130; }));
  view->layoutRows();
  program.table->tableViewViewForRow(0)->setFocus();
  const auto focusedRow = [&] {
    return program.table->tableViewRowForView(QApplication::focusWidget()).value_or(-1);
  };
  const std::pair<Qt::Key, int> moves[] = {{Qt::Key_Down, 1},     {Qt::Key_End, 19},
                                           {Qt::Key_Up, 18},      {Qt::Key_Home, 0},
                                           {Qt::Key_PageDown, 3}, {Qt::Key_PageUp, 0}};
  for (const auto& [key, row] : moves) {
    QTest::keyClick(QApplication::focusWidget(), key);
    EXPECT_EQ(focusedRow(), row);
    const QRect shown = QApplication::focusWidget()->geometry();
    EXPECT_TRUE(view->viewport()->rect().contains(shown)) << "scrolled into sight";
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
  Program::settle();
  EXPECT_EQ(program.table->numberOfRowsInTableView(), 19);
  EXPECT_EQ(focusedRow(), 0);
}

TEST_F(EntryTable, theLineThatShowsWhereADraggedRowGoesIsSeenInBothThemes) {
  addPages(2);
  ASSERT_TRUE(support::waitFor([&] { return view->height() == 2 * 130; }));
  view->layoutRows();
  for (const QString& theme : {u"light"_s, u"dark"_s}) {
    program.preferences().setTheme(theme);
    Program::settle();
    auto& line = test::child<QWidget>(*view, "dropLine");
    line.setGeometry(0, 129, view->viewport()->width(), 3);
    line.show();
    EXPECT_EQ(view->viewport()->grab().toImage().pixelColor(20, 130), ui::Theme::current().accent);
  }
}

TEST_F(EntryTable, takesEntriesFromManyThreadsWhileRowsCome) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this] {
      for (int page = 0; page < 50; ++page) {
        auto entry = std::make_shared<test::Entry>();
        program.table->addEntry(entry);
        entry->setState(CVEntryStateDownloaded);
        if (page % 2) program.table->removeEntry(entry);
      }
    });
  }
  for (auto& thread : threads)
    thread.join();
  Program::settle();
  EXPECT_EQ(program.table->numberOfRowsInTableView(), 100);
  view->layoutRows();
  EXPECT_GT(view->findChildren<ui::EntryRowView*>().size(), 0);
}
