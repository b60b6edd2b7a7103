#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

#include "platform/printing/PrintInfo.h"

using namespace Qt::StringLiterals;
using printing::PrintInfo;

/// The C library itself loses a few bytes for each locale that it looks for in LOCPATH.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:__argz_add_sep\n";
}

namespace {

TEST(PrintInfoTest, ADictionaryIsACopyThatKeepsWhatItDoesNotKnow) {
  QVariantMap dictionary = PrintInfo::sharedPrintInfo().dictionary();
  dictionary.insert(u"VendorTray"_s, 3);
  dictionary.insert(printing::PrintJobDisposition, QString(printing::PrintSaveJob));
  PrintInfo info(dictionary);
  info.setTopMargin(12.5);
  info.setJobSavingURL(QUrl::fromLocalFile(u"/tmp/ü.pdf"_s));

  EXPECT_EQ(dictionary.value(u"PrintTopMargin"_s), 90.0);
  EXPECT_EQ(PrintInfo::sharedPrintInfo().jobDisposition(), printing::JobDisposition::Spool);
  const PrintInfo copy(info.dictionary());
  EXPECT_EQ(copy.dictionary().value(u"VendorTray"_s), 3);
  EXPECT_EQ(copy.jobDisposition(), printing::JobDisposition::Save);
  EXPECT_EQ(copy.jobSavingURL().toLocalFile(), u"/tmp/ü.pdf"_s);
  EXPECT_EQ(copy.topMargin(), 12.5);
}

TEST(PrintInfoTest, OrientationTurnsThePaperOnceAndAPaperOfItsOwnShapeStays) {
  PrintInfo info{QVariantMap()};
  info.setPaperSize({595, 842});
  for (int i = 0; i < 2; ++i) {
    info.setOrientation(printing::PaperOrientationLandscape);
    EXPECT_EQ(info.paperSize(), QSizeF(842, 595));
  }
  info.setOrientation(printing::PaperOrientationPortrait);
  EXPECT_EQ(info.paperSize(), QSizeF(595, 842));
  // A page of exactly a view's size may be wider than tall and portrait.
  info.setPaperSize({1280, 400});
  EXPECT_EQ(info.orientation(), printing::PaperOrientationPortrait);
  EXPECT_EQ(info.paperSize(), QSizeF(1280, 400));
}

TEST(PrintInfoTest, ThePaperIsTheOneOfTheLocale) {
  QTemporaryDir locales;
  qputenv("LOCPATH", locales.path().toLocal8Bit());
  struct Case {
    const char* name;
    QSizeF paper;
  };
  for (const Case& each : {Case{"en_US", {612, 792}}, Case{"de_DE", {595, 842}}}) {
    const QString target = locales.filePath(QString::fromLatin1(each.name));
    QProcess::execute(u"localedef"_s, {u"--no-archive"_s, u"-i"_s, QString::fromLatin1(each.name),
                                       u"-f"_s, u"UTF-8"_s, target});
    if (!QFile::exists(target + u"/LC_PAPER"_s))
      GTEST_SKIP() << "the sources of the locales are not installed";
    qputenv("LC_PAPER", each.name);
    EXPECT_EQ(printing::localePaperSize(), each.paper) << each.name;
    EXPECT_EQ(PrintInfo(QVariantMap()).paperSize(), each.paper);
  }
  qunsetenv("LC_PAPER");
  qunsetenv("LOCPATH");
}

}  // namespace
