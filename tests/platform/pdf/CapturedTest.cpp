#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QProcess>
#include <QStandardPaths>

#include "Inspect.h"
#include "Tools.h"
#include "platform/pdf/DocumentFacts.h"
#include "platform/pdf/DocumentMerge.h"
#include "platform/pdf/PageCanvas.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

QString engine() {
  const QString named = qEnvironmentVariable("CORVALIS_ENGINE");
  if (!named.isEmpty()) return named;
  for (const QString& name : {u"chromium-headless-shell"_s, u"chromium"_s}) {
    const QString path = QStandardPaths::findExecutable(name);
    if (!path.isEmpty()) return path;
  }
  return {};
}

/// The page as the page engine prints it, tagged and with an outline.
QString printed(const QString& body) {
  const QString page = tools::file(u"page.html"_s,
                                   u"<!doctype html><html lang=\"en\"><meta charset=\"utf-8\">"
                                   "<title>Printed</title>%1</html>"_s.arg(body)
                                       .toUtf8());
  const QString path = tools::fresh(u"printed.pdf"_s);
  QStringList arguments =
      QProcess::splitCommand(qEnvironmentVariable("CORVALIS_ENGINE_ARGS").replace(u'\'', u'"'));
  if (geteuid() == 0) arguments += u"--no-sandbox"_s;
  arguments += {u"--headless"_s,
                u"--disable-gpu"_s,
                u"--user-data-dir="_s + tools::fresh(u"profile"_s),
                u"--no-pdf-header-footer"_s,
                u"--generate-pdf-document-outline"_s,
                u"--export-tagged-pdf"_s,
                u"--print-to-pdf="_s + path,
                u"file://"_s + page};
  tools::run(engine(), arguments);
  return path;
}

const QString first =
    u"<h1>First</h1><p><a href='#end'>jump alpha</a></p>"
    "<p style='break-before: page' id='end'>landing alpha</p><h2>Part</h2>"_s;
const QString second =
    u"<h1>Second</h1><p>pages</p><p style='break-before: page'>and pages</p>"
    "<p style='break-before: page' id='end'>landing beta <a href='#top2'>back</a></p>"
    "<p style='break-before: page' id='top2'>deep</p>"_s;

class Captured : public testing::Test {
 protected:
  void SetUp() override {
    if (engine().isEmpty()) GTEST_SKIP() << "there is no page engine on this machine";
    ASSERT_TRUE(qEnvironmentVariable("CORVALIS_ENGINE_ARGS").contains(u"NOTFOUND"_s))
        << "pages may reach the network";
  }
};

TEST_F(Captured, JoinedPagesKeepLinksOutlinesAndTags) {
  const QString path = tools::fresh(u"joined.pdf"_s);
  const auto joined =
      pdf::mergeDocuments({{printed(first), u"One"_s}, {printed(second), u"Two"_s}}, path);
  ASSERT_TRUE(joined) << qPrintable(joined.error().localizedDescription);
  EXPECT_EQ(tools::complaints(path), QString());
  EXPECT_EQ(tools::text(path),
            u"First jump alpha landing alpha Part Second pages and pages landing beta back deep"_s);
  const auto document = inspect::open(path);
  EXPECT_THAT(inspect::linkTargets(*document),
              ElementsAre(ElementsAre(2), ElementsAre(), ElementsAre(), ElementsAre(),
                          ElementsAre(6), ElementsAre()));
  EXPECT_EQ(inspect::tagComplaints(*document), "");
  std::vector<std::string> items;
  for (const inspect::OutlineItem& item : inspect::outline(*document))
    items.push_back(item.title + std::to_string(item.page));
  EXPECT_THAT(items, ElementsAre("One1", "First1", "Part2", "Two3", "Second3"));
}

TEST_F(Captured, BordersLieOverThePageAndItsTagsStay) {
  const QString path = printed(first);
  const MaybeError error =
      pdf::drawPageBorders(path, path, [](pdf::PageCanvas& canvas, int index, QSizeF page) {
        const QSizeF size = canvas.sizeOfText(u"header"_s, {u"Liberation Sans"_s, 10});
        canvas.drawText(
            u"header%1"_s.arg(index), {u"Liberation Sans"_s, 10},
            QRectF(page.width() - 25 - 2 * size.width(), 12, 2 * size.width(), size.height()),
            pdf::LineBreaking::None);
      });
  ASSERT_FALSE(error) << qPrintable(error->localizedDescription);
  EXPECT_EQ(tools::complaints(path), QString());
  EXPECT_EQ(inspect::tagComplaints(*inspect::open(path)), "");
  EXPECT_TRUE(pdf::documentFacts(path)->isTagged);
  EXPECT_NEAR(tools::boxOf(path, u"header1"_s).top(), 13, 1.5);
  EXPECT_NEAR(tools::boxOf(path, u"header0"_s).height(), 11, 2)
      << "the page's own scale does not reach the border";
}

}  // namespace
