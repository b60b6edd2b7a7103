#include <gtest/gtest.h>

#include "capture/CapturedSource.h"
#include "capture/ResultName.h"

using namespace Qt::StringLiterals;

namespace {

TEST(CapturedSource, BareNoscriptElementsGoEachByItself) {
  using capture::documentOfCapturedSource;
  const QString doctype = u"<!DOCTYPE html>\n"_s;
  EXPECT_EQ(documentOfCapturedSource(u"a<NoScript>x\ny</nosCRIPT>b<noscript>z</noscript>c"_s),
            doctype + u"abc"_s);
  EXPECT_EQ(documentOfCapturedSource(u"<noscript class=x>kept</noscript>"_s),
            doctype + u"<noscript class=x>kept</noscript>"_s);
  EXPECT_EQ(documentOfCapturedSource(u"<noscript>no end"_s), doctype + u"<noscript>no end"_s);
}

TEST(CapturedSource, MillionsOfOpenElementsTakeLinearTime) {
  const QString hostile = u"<noscript>"_s.repeated(1'000'000);
  EXPECT_EQ(capture::documentOfCapturedSource(hostile).size(), hostile.size() + 16);
}

TEST(ResultName, TheExtensionIsAppendedOnce) {
  using capture::withExtensionOfFormat;
  const auto file = [](const QString& name) { return QUrl::fromLocalFile(u"/tmp/"_s + name); };
  EXPECT_EQ(withExtensionOfFormat(file(u"a.png"_s), u"PNG"_s), file(u"a.png"_s));
  EXPECT_EQ(withExtensionOfFormat(file(u"a.txt"_s), u"PNG"_s), file(u"a.txt.png"_s));
  EXPECT_EQ(withExtensionOfFormat(file(u"a.PNG"_s), u"PNG"_s), file(u"a.PNG.png"_s));
  EXPECT_EQ(withExtensionOfFormat(file(u"a"_s), u"JPEG"_s), file(u"a.jpg"_s));
  EXPECT_EQ(withExtensionOfFormat(file(u"a"_s), u"unknown"_s), file(u"a"_s));
}

TEST(ResultName, ATitleNeverLeavesItsFolder) {
  const QUrl folder = QUrl::fromLocalFile(u"/tmp/results"_s);
  for (const QString& title : {u".."_s, u"../../etc/passwd"_s, u"a/b"_s, u"100% #1?"_s}) {
    const QString path = capture::resultInFolder(folder, title, u"PDF"_s).toLocalFile();
    EXPECT_EQ(path.section(u'/', 0, -2), u"/tmp/results"_s) << qPrintable(path);
    EXPECT_TRUE(path.endsWith(".pdf"_L1));
  }
}

}  // namespace
