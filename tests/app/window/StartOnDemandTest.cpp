#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "AccessibleProgram.h"
#include "Session.h"
#include "intake/Requests.h"

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace {

const QString corvalis = QStringLiteral(CORVALIS_PROGRAM);

QByteArray request(const QString& title, qsizetype size) {
  const QString page = u"<html><head><title>%1</title></head><body><!--%2-->%1</body></html>"_s;
  return requests::fullRequest(u"corvxurl://127.0.0.1/page"_s, page.arg(title, QString(size, u'x')),
                               u""_s, u""_s)
      .toUtf8();
}

}  // namespace

/// The bus runs before the program is made known to it, and the program does not run at all.
TEST(StartOnDemand, RequestsStartOneProgramThatTakesThemAll) {
  Session session;
  ASSERT_EQ(session.run(corvalis, {u"integrate"_s}), 0);
  constexpr qsizetype large = 22'000'000;  // as Base64 about 30 MB
  QList<QProcess*> senders;
  for (const auto& [title, size] :
       {std::pair(u"Large"_s, large), {u"Small"_s, 1}, {u"Tiny"_s, 1}}) {
    senders << &session.start(corvalis, {u"open"_s, u"-"_s});
    senders.last()->write(request(title, size));
    senders.last()->closeWriteChannel();
  }
  for (QProcess* sender : senders) {
    EXPECT_TRUE(inTime([&] { return sender->state() == QProcess::NotRunning; }));
    EXPECT_EQ(sender->exitCode(), 0);
  }
  const auto doneRows = [&] { return session.corvalis().rows().filter(u"Done..."_s).size(); };
  EXPECT_TRUE(inTime([&] { return doneRows() == 3; }))
      << session.corvalis().rows().join(u'\n').toStdString();
  EXPECT_THAT(session.files(), ElementsAre(u"Large.png"_s, u"Small.png"_s, u"Tiny.png"_s));

  session.pressKeys({u"ctrl+q"_s});
  EXPECT_TRUE(inTime([&] { return !session.isOnBus(u"com.maplebrook.corvalis"_s); }));
  ASSERT_EQ(session.run(corvalis, {u"integrate"_s, u"--remove"_s}), 0);
  EXPECT_FALSE(session.canBeStarted(u"com.maplebrook.corvalis"_s));
}
