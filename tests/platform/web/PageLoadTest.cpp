#include <gmock/gmock.h>

#include "EngineFixture.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

class PageLoadTest : public EngineTest {};

TEST_F(PageLoadTest, ReportsTheStepsOfALoadInTheirOrder) {
  server.redirect(u"/old"_s, u"/new"_s);
  server.setPage(u"/new"_s, "<!DOCTYPE html><title>Fresh &amp; new</title><p>Text");
  openPage();
  load({server.url(u"/old"_s)});
  EXPECT_EQ(recorder->events.join(u' '), u"loading start redirect commit title finish idle");
  EXPECT_EQ(recorder->redirects, QStringList(u"/new"_s));
  EXPECT_EQ(page->currentURL(), server.url(u"/new"_s));
  EXPECT_EQ(page->title(), u"Fresh & new");
  EXPECT_EQ(page->mainResponseMimeType(), u"text/html");
  EXPECT_EQ(recorder->response.status, 200);
  EXPECT_TRUE(std::is_sorted(recorder->progress.begin(), recorder->progress.end()));
  EXPECT_EQ(recorder->progress.back(), 1.0);
  EXPECT_GT(recorder->mainFrameBytes, 0);
}
