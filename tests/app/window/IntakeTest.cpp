#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>

#include "AccessibleProgram.h"
#include "Session.h"
#include "intake/Requests.h"
#include "platform/pdf/DocumentFacts.h"
#include "settings/CVDefaultPreferences.h"
#include "support/HttpServer.h"

using namespace Qt::StringLiterals;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

namespace {

QString capturedPage(const QString& title) {
  return requests::fullRequest(
      u"corvxurl://127.0.0.1/"_s + title.toLower().replace(u' ', u'-'),
      u"<html><head><title>%1</title></head><body><h1>%1</h1></body></html>"_s.arg(title), u""_s,
      u""_s);
}

QByteArray page(const QByteArray& title) {
  return "<!DOCTYPE html><title>" + title + "</title><body style='margin:0;background:#060'>" +
         title;
}

/// As many rows, and each of them in that state.
bool rowsAre(const AccessibleProgram& corvalis, qsizetype count, const QString& state) {
  const QStringList rows = corvalis.rows();
  return rows.size() == count && std::all_of(rows.begin(), rows.end(), [&](const QString& row) {
           return row.endsWith(state);
         });
}

class Intake : public testing::Test {
 protected:
  void expectRows(qsizetype count, const QString& state) {
    EXPECT_TRUE(inTime([&] { return rowsAre(session.corvalis(), count, state); }))
        << session.corvalis().rows().join(u'\n').toStdString();
  }

  void mouse(const QStringList& commands) { EXPECT_EQ(session.run(u"xdotool"_s, commands), 0); }

  static QStringList at(int x, int y) {
    return {u"mousemove"_s, QString::number(x), QString::number(y)};
  }

  void click(const QString& button) {
    const QPoint middle = session.corvalis().place(u"push button"_s, button).center();
    mouse(at(middle.x(), middle.y()) + QStringList{u"click"_s, u"1"_s});
  }

  /// Drags what the other program shows to the drop zone, and drops it there.
  void drag(QProcess& source) {
    const QPoint zone = session.corvalis().place(u"filler"_s, u"Drop zone"_s).center();
    mouse(at(850, 850) + QStringList{u"mousedown"_s, u"1"_s} + at(820, 820) +
          at(zone.x() + 30, zone.y()) + at(zone.x(), zone.y()));
    expectSaid(source, "accepted");
    mouse({u"mouseup"_s, u"1"_s});
    expectSaid(source, "dropped");
  }

  static void expectSaid(QProcess& source, const QByteArray& word) {
    EXPECT_TRUE(inTime([&] { return source.canReadLine(); })) << "no word: " << word.constData();
    EXPECT_EQ(source.readLine().trimmed(), word);
  }

  Session session;
};

}  // namespace

TEST_F(Intake, RequestsOverTheBusBecomeFilesNotificationsAndDoneRows) {
  session.startCorvalis();
  for (const auto& title : {u"Request 1"_s, u"Request 2"_s, u"Request 3"_s})
    session.sendRequest(capturedPage(title));
  expectRows(3, u"Done..."_s);
  // Steps are taken in turn: whatever was to come of the first three has come before the fourth.
  session.sendRequest(capturedPage(u"Request 4"_s));
  expectRows(4, u"Done..."_s);
  EXPECT_THAT(session.files(), ElementsAre(u"Request 1.png"_s, u"Request 2.png"_s,
                                           u"Request 3.png"_s, u"Request 4.png"_s));
  for (const QString& file : session.files())
    EXPECT_EQ(QImage(session.downloads() + u'/' + file).width(), 1024) << file.toStdString();
  EXPECT_TRUE(inTime([&] {
    return session.notifications().contains(
        u"Snapshot captured: Snapshot captured for Request 4"_s);
  }));
  EXPECT_THAT(session.notifications(),
              IsSupersetOf({u"Snapshot captured: Snapshot captured for Request 1"_s,
                            u"Snapshot captured: Snapshot captured for Request 2"_s,
                            u"Snapshot captured: Snapshot captured for Request 3"_s}));
}

TEST_F(Intake, FinishedPagesLeaveTheQueueWhenTheUserWantsIt) {
  session.saveSettings([](CVDefaultPreferences& settings) {
    settings.setAutomaticallyRemoveFromQueueOncePrinted(true);
  });
  session.startCorvalis();
  session.sendRequest(capturedPage(u"Brief"_s));
  EXPECT_TRUE(inTime([&] { return session.files().contains(u"Brief.png"_s); }));
  expectRows(0, {});
}

TEST_F(Intake, PastedAndDroppedPagesWaitAreProcessedTogetherAndCleared) {
  HttpServer server;
  server.setPage(u"/one"_s, page("Pasted one"));
  server.setPage(u"/two"_s, page("Pasted two"));
  session.saveSettings(
      [](CVDefaultPreferences& settings) { settings.setProcessAutomatically(false); });
  session.startCorvalis();
  session.startOtherProgram(
      {u"copy"_s, u"First %1, then %2."_s.arg(server.url(u"/one"_s).toString(),
                                              server.url(u"/two"_s).toString())});
  session.pressKeys({u"ctrl+v"_s});
  expectRows(2, u"Ready to process..."_s);

  QProcess& files = session.startOtherProgram(
      {u"drag-files"_s, session.write(u"dropped.html"_s, page("Dropped file")),
       session.downloads()});
  drag(files);
  expectRows(3, u"Ready to process..."_s);
  files.kill();
  files.waitForFinished();
  drag(session.startOtherProgram({u"drag"_s, server.url(u"/one"_s).toString()}));
  expectRows(4, u"Ready to process..."_s);
  EXPECT_EQ(session.files(), QStringList());

  click(u"Queue commands"_s);
  EXPECT_TRUE(inTime([&] { return session.corvalis().press(u"push button"_s, u"Process all"_s); }));
  expectRows(4, u"Done..."_s);
  EXPECT_THAT(session.files(), ElementsAre(u"Dropped file.png"_s, u"Pasted one 2.png"_s,
                                           u"Pasted one.png"_s, u"Pasted two.png"_s));
  session.pressKeys({u"ctrl+k"_s});
  expectRows(0, {});
}

TEST_F(Intake, DroppedDocumentsAreJoined) {
  session.startCorvalis();
  // Documents of one page each, made by the program itself.
  QStringList documents;
  for (const auto& name : {u"first"_s, u"second"_s}) {
    const QString source = session.write(name + u".html"_s, page(name.toLatin1()));
    documents << session.path(name + u".pdf"_s);
    ASSERT_EQ(session.run(QStringLiteral(CORVALIS_PROGRAM),
                          {u"capture"_s, source, u"-o"_s, documents.last()}),
              0);
  }
  drag(session.startOtherProgram(QStringList{u"drag-files"_s} + documents));
  EXPECT_TRUE(inTime([&] { return session.corvalis().press(u"push button"_s, u"Save"_s); }));
  EXPECT_TRUE(inTime([&] { return session.files() == QStringList{u"Multipage.pdf"_s}; }));
  EXPECT_EQ(session.corvalis().rows(), QStringList());
}
