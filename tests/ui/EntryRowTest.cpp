#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>

#include "Program.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVError.h"
#include "settings/CVObjectRepository.h"
#include "support/Wait.h"
#include "ui/controls/CVProgressIndicator.h"
#include "ui/controls/CVScaleToFillImageView.h"
#include "ui/look/Theme.h"
#include "ui/queue/AddressButton.h"
#include "ui/queue/EntryRowView.h"

using namespace Qt::StringLiterals;
using test::child;
using test::Program;

namespace {

/// A row outside of every table, with its view.
class EntryRow : public ::testing::Test {
 protected:
  EntryRow() {
    row = CVEntryViewController::create({program.notifications, program.sounds});
    row->setEntry(entry);
    view.reset(row->view());
    view->resize(440, 130);
    view->show();
  }

  void setState(CVEntryState state) {
    entry->setState(state);
    Program::settle();
  }
  void fail(CVEntryState state) {
    entry->fail(state);
    Program::settle();
  }
  template <class Widget>
  Widget& part(const char* name) {
    return child<Widget>(*view, name);
  }
  bool shown(const char* name) { return part<QWidget>(name).isVisibleTo(view.get()); }
  QString stateText() { return part<QLabel>("stateLabel").text(); }
  std::size_t notified() const { return program.notifications->delivered.size(); }

  Program program;
  std::shared_ptr<test::Entry> entry = std::make_shared<test::Entry>();
  std::shared_ptr<CVEntryViewController> row;
  std::unique_ptr<QWidget> view;
};

}  // namespace

TEST_F(EntryRow, showsEachStateInWordsPictureAndActions) {
  struct {
    CVEntryState state;
    bool failed;
    QString text;
    bool spinner, actions, reveal, address;
    std::optional<bool> editable;
    bool dimmed;
  } const cases[] = {
      {CVEntryStateWaiting, false, u"Waiting to download..."_s, true, false, false, false,
       std::nullopt, false},
      {CVEntryStateDownloading, false, u"Downloading..."_s, true, false, false, false, std::nullopt,
       true},
      {CVEntryStateDownloaded, false, u"Ready to process..."_s, false, true, false, true, true,
       false},
      {CVEntryStateProcessing, false, u"Processing..."_s, true, false, false, false, false, true},
      {CVEntryStateDone, false, u"Done..."_s, false, true, true, true, true, true},
      {CVEntryStateDone, true, u"Error capturing..."_s, false, true, false, true, true, true},
      {CVEntryStateDownloaded, true, u"Error downloading URL..."_s, false, true, false, true, true,
       false},
  };
  for (const auto& look : cases) {
    SCOPED_TRACE(look.text.toStdString());
    entry->setError(nullptr);
    look.failed ? fail(look.state) : setState(look.state);
    EXPECT_EQ(stateText(), look.text);
    const QColor ink = part<QLabel>("stateLabel").palette().color(QPalette::WindowText);
    EXPECT_EQ(ink, look.dimmed ? ui::Theme::light().secondaryText : ui::Theme::light().text);
    EXPECT_EQ(shown("thumbnailProgressIndicator"), look.spinner);
    EXPECT_EQ(part<CVProgressIndicator>("thumbnailProgressIndicator").indeterminate(),
              look.spinner);
    EXPECT_EQ(shown("processButton"), look.actions);
    EXPECT_EQ(shown("removeButton"), look.actions);
    EXPECT_EQ(shown("revealButton"), look.reveal);
    EXPECT_EQ(part<QWidget>("urlButton").isEnabled(), look.address);
    if (look.editable) {
      EXPECT_EQ(part<QLineEdit>("titleTextField").isReadOnly(), !*look.editable);
    }
  }
}

TEST_F(EntryRow, theSignOfAStateDiffersInShapeNotOnlyInColour) {
  QList<QImage> shapes;
  const auto take = [&] {
    QImage sign = part<QLabel>("stateIcon").pixmap().toImage();
    shapes += sign.convertToFormat(QImage::Format_Alpha8);
  };
  for (CVEntryState state : {CVEntryStateWaiting, CVEntryStateDownloading, CVEntryStateDownloaded,
                             CVEntryStateProcessing, CVEntryStateDone}) {
    setState(state);
    take();
  }
  fail(CVEntryStateDone);
  take();
  for (qsizetype one = 0; one < shapes.size(); ++one) {
    for (qsizetype other = 0; other < one; ++other)
      EXPECT_NE(shapes[one], shapes[other]);
  }
}

TEST_F(EntryRow, showsTheCurrentAddressElseTheFirstElseNone) {
  setState(CVEntryStateDownloaded);
  auto& address = part<ui::AddressButton>("urlButton");
  EXPECT_EQ(address.text(), u"http://127.0.0.1/page"_s);
  entry->setCurrentURL(QUrl(u"http://127.0.0.1/moved"_s));
  Program::settle();
  EXPECT_EQ(address.text(), u"http://127.0.0.1/moved"_s);

  auto nowhere = std::make_shared<test::Entry>(QString());
  row->setEntry(nowhere);
  nowhere->setState(CVEntryStateDownloaded);
  Program::settle();
  EXPECT_FALSE(shown("urlButton"));
}

TEST_F(EntryRow, fillsTheTitleOnlyWhenThePageHasLoaded) {
  auto& field = part<QLineEdit>("titleTextField");
  entry->setTitle(u"Early"_s);
  setState(CVEntryStateDownloading);
  EXPECT_EQ(field.text(), QString());
  entry->setTitle(QString(500, u'x'));
  setState(CVEntryStateDownloaded);
  EXPECT_EQ(field.text(), QString(150, u'x') + u"..."_s + QString(150, u'x'));
  setState(CVEntryStateDone);
  entry->setTitle(u"Late"_s);
  Program::settle();
  EXPECT_EQ(field.text().size(), 303);
}

TEST_F(EntryRow, anEditedTitleReachesTheEntryAndEscapeTakesItBack) {
  entry->setTitle(u"Old"_s);
  setState(CVEntryStateDownloaded);
  auto& field = part<QLineEdit>("titleTextField");
  view->activateWindow();
  field.setFocus();
  field.selectAll();
  QTest::keyClicks(&field, u"New"_s);
  QTest::keyClick(&field, Qt::Key_Return);
  EXPECT_EQ(entry->title(), u"New"_s);
  EXPECT_EQ(entry->processed, 0) << "the key ends the editing, no more";
  field.setFocus();
  QTest::keyClicks(&field, u"er"_s);
  QTest::keyClick(&field, Qt::Key_Escape);
  Program::settle();
  EXPECT_EQ(field.text(), u"New"_s);
  EXPECT_EQ(entry->title(), u"New"_s);
}

TEST_F(EntryRow, thumbnailsFollowTheState) {
  auto& view = part<CVScaleToFillImageView>("thumbnailImageView");
  setState(CVEntryStateWaiting);
  EXPECT_EQ(view.image().size(), QSize(400, 300));
  QImage page(256, 184, QImage::Format_RGB32);
  page.fill(Qt::magenta);
  entry->setRepresentativeImage(std::make_shared<imaging::Image>(page));
  setState(CVEntryStateDownloaded);
  EXPECT_EQ(view.image().pixelColor(64, 46), QColor(Qt::magenta));
  fail(CVEntryStateDone);
  EXPECT_EQ(view.image().pixelColor(64, 46), QColor(Qt::magenta)) << "a failed capture keeps it";
  fail(CVEntryStateDownloaded);
  EXPECT_NE(view.image().pixelColor(64, 46), QColor(Qt::magenta));
}

TEST_F(EntryRow, aFailureIsNotifiedOncePerRun) {
  entry->setTitle(u"A page"_s);
  fail(CVEntryStateDownloaded);
  ASSERT_EQ(notified(), 1U);
  const auto& first = program.notifications->delivered[0];
  EXPECT_EQ(first.title, u"Error while capturing"_s);
  EXPECT_EQ(first.informativeText, u"Error while capturing A page"_s);
  EXPECT_EQ(first.soundName, u"Basso"_s);
  fail(CVEntryStateDone);
  EXPECT_EQ(notified(), 1U);
  setState(CVEntryStateDownloading);
  fail(CVEntryStateDownloaded);
  EXPECT_EQ(notified(), 2U);
}

TEST_F(EntryRow, aSuccessIsNotifiedAtEachRendering) {
  entry->setTitle(u"A page"_s);
  setState(CVEntryStateDownloaded);
  setState(CVEntryStateDone);
  ASSERT_EQ(notified(), 1U);
  EXPECT_EQ(program.notifications->delivered[0].title, u"Snapshot captured"_s);
  EXPECT_EQ(program.notifications->delivered[0].informativeText, u"Snapshot captured for A page"_s);
  entry->setTitle(u"Other"_s);
  Program::settle();
  EXPECT_EQ(notified(), 2U);
}

TEST_F(EntryRow, nothingIsNotifiedWhereTheUserWantsNothing) {
  program.preferences().setSystemNotifications(false);
  fail(CVEntryStateDone);
  EXPECT_EQ(notified(), 0U);
  EXPECT_FALSE(row->notificationPresented());
}

TEST_F(EntryRow, processRetriesAFailedDownloadAndElseProcesses) {
  fail(CVEntryStateDownloaded);
  row->onProcess();
  EXPECT_TRUE(support::waitFor([&] { return entry->prepared == 1; }));
  EXPECT_FALSE(entry->error());
  EXPECT_EQ(entry->processed, 0);
  entry->endPreparing();
  setState(CVEntryStateDownloading);
  row->onProcess();
  setState(CVEntryStateDownloaded);
  EXPECT_EQ(entry->prepared, 1);
  part<QToolButton>("processButton").click();
  EXPECT_TRUE(support::waitFor([&] { return entry->processed == 1; }));
  entry->endProcessing();
  fail(CVEntryStateDone);
  row->onProcess();
  EXPECT_TRUE(support::waitFor([&] { return entry->processed == 2; }));
  EXPECT_FALSE(entry->error());
  entry->endProcessing();
}

TEST_F(EntryRow, adjustingIsForPagesAtRest) {
  setState(CVEntryStateProcessing);
  row->onDisplayMiniBrowser();
  EXPECT_EQ(entry->adjusted, 0);
  fail(CVEntryStateDone);
  part<QAbstractButton>("urlButton").click();
  EXPECT_EQ(entry->adjusted, 1);
  EXPECT_FALSE(entry->error());
}

TEST_F(EntryRow, everyActionHasAKey) {
  setState(CVEntryStateDownloaded);
  row->setMovable(true, false);
  auto& keys = static_cast<ui::EntryRowView&>(*view);
  QStringList done;
  const auto record = [&](auto signal, const QString& name) {
    QObject::connect(&keys, signal, [&done, name] { done += name; });
  };
  record(&ui::EntryRowView::upRequested, u"up"_s);
  record(&ui::EntryRowView::downRequested, u"down"_s);
  record(&ui::EntryRowView::removeRequested, u"remove"_s);
  keys.setFocus();
  QTest::keyClick(&keys, Qt::Key_Return);
  EXPECT_TRUE(support::waitFor([&] { return entry->processed == 1; }));
  QTest::keyClick(&keys, Qt::Key_Up, Qt::AltModifier);
  QTest::keyClick(&keys, Qt::Key_Down, Qt::AltModifier);  // the last row
  QTest::keyClick(&keys, Qt::Key_Delete);
  EXPECT_EQ(done, (QStringList{u"up"_s, u"remove"_s}));
  EXPECT_EQ(program.sounds->played.filter(u"empty trash"_s).size(), 1);
  entry->endProcessing();
}
