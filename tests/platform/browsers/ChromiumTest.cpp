#include <gmock/gmock.h>

#include <future>

#include "Chromium.h"
#include "platform/browsers/DevToolsFrontPage.h"
#include "platform/desktop/BrowserProfiles.h"
#include "platform/desktop/RunningApplications.h"
#include "support/HttpServer.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using namespace browsers;

namespace {

constexpr char pageText[] =
    "<!DOCTYPE html><head><title>Front</title><style>p { color: rgb(1, 2, 3); }</style>"
    "<style media='print'>p { color: rgb(9, 9, 9); }</style></head><body><p>served</p>"
    "<iframe id='menu' name='menu' src='/frame'></iframe><iframe src='/frame'></iframe>"
    "<iframe id='stranger' src='http://localhost:%1/frame'></iframe>"
    "<script>document.querySelector('p').textContent = 'made by a script';</script>";

TEST(RunningChromium, GivesThePageThatItShows) {
  HttpServer server;
  QByteArray page = pageText;
  page.replace("%1", QByteArray::number(server.url(u"/"_s).port()));
  server.setPage(u"/page"_s, page);
  server.setPage(u"/frame"_s, "<p>In the frame");
  Chromium browser(server.url(u"/page"_s));
  ASSERT_TRUE(browser.isReady());
  EXPECT_EQ(desktop::chromiumProfileFoldersInUse(), QStringList{Chromium::profileFolder()});

  DevToolsFrontPage front(desktop::RunningApplications::create());
  EXPECT_TRUE(front.isRunning());
  const QString frame = QString::fromLatin1(
      QByteArray("%3Chtml%3E%3Chead%3E%3C/head%3E%3Cbody%3E%3Cp%3EIn%20the%20frame%3C/p%3E"
                 "%3C/body%3E%3C/html%3E")
          .toBase64());
  // The second frame cannot be named, the third is of another origin.
  const QString frames = u"iframe::"_s + frame + u"iframe::iframe::"_s;
  std::optional<QString> address;
  PageTexts texts;
  // The page, its frames and its script come in after the endpoint is up.
  EXPECT_TRUE(support::waitFor([&] {
    auto work = std::async(std::launch::async, [&] {
      address = front.address();
      texts = front.capture();
    });
    EXPECT_TRUE(support::waitFor(
        [&] { return work.wait_for(std::chrono::seconds(0)) == std::future_status::ready; },
        std::chrono::minutes(2)));
    const bool ran = texts.document && texts.document->contains(u"made by a script"_s);
    return ran && texts.frames == frames;
  }));
  ASSERT_TRUE(texts.document);
  EXPECT_EQ(address, server.url(u"/page"_s).toString());
  EXPECT_EQ(texts.frames, frames);
  EXPECT_THAT(texts.document->toStdString(), ::testing::HasSubstr("made by a script"));
  EXPECT_EQ(texts.styles, u" p { color: rgb(1, 2, 3); }  p { color: rgb(1, 2, 3); } "_s);
}

}  // namespace
