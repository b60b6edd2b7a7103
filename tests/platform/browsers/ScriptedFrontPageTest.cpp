#include "platform/browsers/ScriptedFrontPage.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/browsers/UserBrowsers.h"
#include "platform/desktop/RunningApplications.h"
#include "platform/desktop/ScriptRunner.h"

using namespace Qt::StringLiterals;
using namespace browsers;
using ::testing::ElementsAre;

namespace {

QString contents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString fixture(const QString& name) {
  const QString text =
      contents(QStringLiteral(CORVALIS_SOURCE_DIR "/tests/platform/browsers/fixtures/") + name +
               u".applescript"_s);
  EXPECT_FALSE(text.isEmpty()) << name.toStdString();
  return text;
}

/// An `osascript` that keeps each script and answers with the script's number, or fails.
class RecordingOsascript {
 public:
  explicit RecordingOsascript(const QByteArray& lastCommand = "echo answer $n") {
    QFile program(folder_.filePath(u"osascript"_s));
    EXPECT_TRUE(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\ncd " + folder_.path().toUtf8() +
                  "\nn=0; while [ -e script$n ]; do n=$((n+1)); done\ncat > script$n\n" +
                  lastCommand + "\n");
    program.close();
    program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", folder_.path().toUtf8() + ':' + path_);
  }
  ~RecordingOsascript() { qputenv("PATH", path_); }

  QStringList scripts() const {
    QStringList texts;
    for (int number = 0; QFile::exists(script(number)); ++number)
      texts << contents(script(number));
    return texts;
  }

 private:
  QString script(int number) const { return folder_.filePath(u"script%1"_s.arg(number)); }

  QTemporaryDir folder_;
  const QByteArray path_ = qgetenv("PATH");
};

BrowserAccess access() {
  return {desktop::ScriptRunner::create(), desktop::RunningApplications::create(), nullptr};
}

TEST(ScriptedFrontPage, SafariScriptsRunToTheLetterAndInOrder) {
  const RecordingOsascript osascript;
  const auto safari = safariFrontPage(access());
  const PageTexts texts = safari->capture();
  EXPECT_EQ(texts.document, u"answer 0"_s);
  EXPECT_EQ(texts.styles, u"answer 1"_s);
  EXPECT_EQ(texts.frames, u"answer 2"_s);
  EXPECT_EQ(safari->source(), u"answer 3"_s);
  EXPECT_EQ(safari->address(), u"answer 4"_s);
  EXPECT_THAT(osascript.scripts(),
              ElementsAre(fixture(u"safari-document"_s), fixture(u"safari-styles"_s),
                          fixture(u"safari-frames"_s), fixture(u"safari-source"_s),
                          fixture(u"safari-address"_s)));
}

TEST(ScriptedFrontPage, ChromeScriptsRunToTheLetterAndInOrder) {
  const RecordingOsascript osascript;
  const auto chrome = chromeFrontPage(access());
  EXPECT_EQ(chrome->capture().frames, u"answer 2"_s);
  EXPECT_EQ(chrome->address(), u"answer 3"_s);
  EXPECT_THAT(osascript.scripts(),
              ElementsAre(fixture(u"chrome-document"_s), fixture(u"chrome-styles"_s),
                          fixture(u"chrome-frames"_s), fixture(u"chrome-address"_s)));
}

TEST(ScriptedFrontPage, AFailedDocumentEndsSafarisCaptureAndNotChromes) {
  const RecordingOsascript osascript("test $n = 2 && echo styles || exit 1");
  EXPECT_EQ(safariFrontPage(access())->capture().document, std::nullopt);
  EXPECT_EQ(osascript.scripts().size(), 1);
  const PageTexts texts = chromeFrontPage(access())->capture();
  EXPECT_EQ(osascript.scripts().size(), 4);
  EXPECT_EQ(texts.document, std::nullopt);
  EXPECT_EQ(texts.styles, u"styles"_s);
}

TEST(ScriptedFrontPage, SafariIsAbsentWhereThereAreNoScripts) {
  const auto safari = safariFrontPage(access());
  EXPECT_FALSE(safari->isRunning());
  EXPECT_EQ(safari->capture().document, std::nullopt);
  EXPECT_EQ(safari->address(), std::nullopt);
}

}  // namespace
