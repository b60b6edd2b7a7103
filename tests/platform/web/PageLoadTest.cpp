#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <algorithm>

#include "EngineFixture.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace {

class PageLoadTest : public EngineTest {};

TEST_F(PageLoadTest, ReportsTheStepsOfALoadInTheirOrder) {
  server.redirect(u"/old"_s, u"/new"_s);
  server.setPage(u"/new"_s, "<!DOCTYPE html><title>Fresh &amp; new</title><p>Text");
  openPage();
  load({server.url(u"/old"_s)});
  EXPECT_EQ(recorder->events.join(u' ').toStdString(),
            "loading start redirect commit title finish idle");
  EXPECT_EQ(recorder->redirects, QStringList(u"/new"_s));
  EXPECT_EQ(page->currentURL(), server.url(u"/new"_s));
  EXPECT_EQ(page->title().toStdString(), "Fresh & new");
  EXPECT_EQ(page->mainResponseMimeType().toStdString(), "text/html");
  EXPECT_EQ(recorder->response.status, 200);
  EXPECT_TRUE(std::is_sorted(recorder->progress.begin(), recorder->progress.end()));
  EXPECT_EQ(recorder->progress.back(), 1.0);
  EXPECT_GT(recorder->mainFrameBytes, 0);
}

TEST_F(PageLoadTest, FramesWithinThePageDoNotCountAsThePage) {
  server.setPage(u"/frame"_s, "<title>Frame</title>in a frame");
  // Another host name is another site, so this frame lives in a process of its own.
  server.setPage(u"/"_s, "<title>Outer</title><iframe src='/frame'></iframe><iframe src='" +
                             server.url(u"/frame"_s, u"localhost"_s).toEncoded() + "'></iframe>");
  openPage();
  load({server.url(u"/"_s)});
  EXPECT_EQ(recorder->events.join(u' ').toStdString(), "loading start commit title finish idle");
  EXPECT_EQ(recorder->titles, QStringList(u"Outer"_s));
  EXPECT_TRUE(support::waitFor([this] { return recorder->childFinishes >= 2; }));

  std::vector<web::FrameValue> values;
  page->evaluateInFrames(
      u"document.body.innerText.trim()"_s,
      [&values](std::vector<web::FrameValue> found) { values = std::move(found); });
  ASSERT_TRUE(support::waitFor([&values] { return !values.empty(); }));
  ASSERT_EQ(values.size(), 3u);
  EXPECT_EQ(values[0].url, server.url(u"/"_s));
  for (size_t index : {1, 2}) {
    EXPECT_EQ(values[index].url.path().toStdString(), "/frame");
    EXPECT_EQ(values[index].value.value_or(QJsonValue()).toString().toStdString(), "in a frame");
  }
}

TEST_F(PageLoadTest, TitlesThatScriptsSetAreReported) {
  server.setPage(u"/"_s,
                 "<title>First</title><script>setTimeout(()=>document.title='Second',50)</script>");
  openPage();
  load({server.url(u"/"_s)});
  EXPECT_TRUE(support::waitFor([this] { return recorder->titles.contains(u"Second"_s); }));
}

TEST_F(PageLoadTest, APageThatStopsItsOwnLoadingIsFinished) {
  server.setPage(u"/"_s, "<title>Halted</title><script>window.stop()</script><p>never read");
  openPage();
  load({server.url(u"/"_s)});
  EXPECT_EQ(recorder->failure, std::nullopt);
  EXPECT_TRUE(recorder->finished());
  EXPECT_EQ(page->title(), u"Halted"_s);
  EXPECT_FALSE(page->isLoading());
}

struct FailureCase {
  const char* name;
  HttpServer::Answer answer;
  web::ErrorCode code;
  const char* words;
};

class MainRequestFailure : public EngineTest, public ::testing::WithParamInterface<FailureCase> {};

TEST_P(MainRequestFailure, EndsTheLoadWithAPlainDescription) {
  server.set(u"/it"_s, GetParam().answer);
  openPage();
  // Only the case that must run into the limit has a short one: a busy machine may be slow to
  // answer.
  const bool silent = GetParam().code == web::NoAnswer;
  load({server.url(u"/it"_s), {}, std::chrono::milliseconds(silent ? 400 : 20000)});
  ASSERT_TRUE(recorder->failure);
  EXPECT_EQ(recorder->failure->code, GetParam().code);
  EXPECT_EQ(recorder->failedPhase, web::LoadPhase::Provisional);
  EXPECT_THAT(recorder->failure->localizedDescription.toStdString(),
              ::testing::HasSubstr(GetParam().words));
  EXPECT_EQ(recorder->count("fail"), 1);
  EXPECT_FALSE(recorder->finished());
  // The page is of use afterwards.
  server.setPage(u"/good"_s, "<title>Good</title>");
  recorder->events.clear();
  recorder->failure.reset();
  load({server.url(u"/good"_s)});
  EXPECT_EQ(recorder->failure, std::nullopt);
  EXPECT_EQ(page->title().toStdString(), "Good");
}

using Answer = HttpServer::Answer;
INSTANTIATE_TEST_SUITE_P(
    Answers, MainRequestFailure,
    ::testing::Values(
        FailureCase{"Pdf", {"%PDF-1.4", "application/pdf"}, web::NoDocument, "(application/pdf)"},
        FailureCase{"Attachment",
                    {"<p>x", "text/html", "200 OK", "Content-Disposition: attachment\r\n"},
                    web::NoDocument,
                    "file to download"},
        FailureCase{
            "NoContent", {"", "text/html", "204 No Content"}, web::NoDocument, "status 204"},
        FailureCase{"RedirectLoop",
                    {"", "text/plain", "302 Found", "Location: /it\r\n"},
                    web::LoadFailed,
                    "in a circle"},
        FailureCase{"Silence",
                    {"", "", "", "", Answer::Kind::Never},
                    web::NoAnswer,
                    "did not answer within 0.4 seconds"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(PageLoadTest, UnreachableAddressesAreExplained) {
  QTcpServer closed;
  ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
  const QUrl refused(u"http://127.0.0.1:%1/"_s.arg(closed.serverPort()));
  closed.close();
  const std::pair<QUrl, const char*> rows[] = {
      {refused, "“127.0.0.1” refused the connection"},
      {QUrl(u"http://no-such-name.example/"_s), "“no-such-name.example” was not found"},
      {QUrl(u"file:///no/such/file.html"_s), "“/no/such/file.html” does not exist"},
      {QUrl(u"nonsense:thing"_s), "begin with “nonsense:”"},
  };
  for (const auto& [url, words] : rows) {
    openPage();
    load({url, {}, std::chrono::seconds(5), web::LocalFiles::Allowed});
    ASSERT_TRUE(recorder->failure) << words;
    EXPECT_THAT(recorder->failure->localizedDescription.toStdString(), ::testing::HasSubstr(words));
  }
}

/// The browser shows a page of its own for each failure, and tells of it when the next load may
/// have begun already.
class NextLoadAfterFailure : public web::PageObserver {
 public:
  explicit NextLoadAfterFailure(std::vector<QUrl> rest) : rest_(std::move(rest)) {}
  void pageFailedLoad(web::Page& page, web::LoadPhase, const Error&) override {
    if (next_ < rest_.size()) page.load({rest_[next_++]});
  }

 private:
  std::vector<QUrl> rest_;
  size_t next_ = 0;
};

TEST_F(PageLoadTest, ErrorPagesOfEarlierLoadsDoNotFailALaterOne) {
  server.setPage(u"/good"_s, "<title>Good</title>");
  server.set(u"/file"_s, {"PK", "application/zip"});
  const QUrl unknown(u"http://no-such-name.example/"_s), download = server.url(u"/file"_s),
                                                         relative(u"no-such-name.example/x"_s),
                                                         good = server.url(u"/good"_s);
  const std::vector<QUrl> rows[] = {{unknown, relative, good},
                                    {unknown, download, good},
                                    {unknown, relative, unknown, download, relative, good},
                                    {unknown, unknown, relative, relative, good}};
  for (const auto& row : rows) {
    openPage();
    const auto next =
        std::make_shared<NextLoadAfterFailure>(std::vector(row.begin() + 1, row.end()));
    page->addObserver(next);
    page->load({row.front()});
    ASSERT_TRUE(support::waitFor(
        [&] { return recorder->finished() || recorder->count("fail") == int(row.size()); }));
    EXPECT_EQ(recorder->count("fail"), int(row.size()) - 1);
    EXPECT_EQ(page->title().toStdString(), "Good")
        << recorder->failure->localizedDescription.toStdString();
  }
}

TEST_F(PageLoadTest, AnErrorPageWithADocumentLoads) {
  server.set(u"/gone"_s, {"<title>Not here</title><p>Sorry", "text/html", "404 Not Found"});
  openPage();
  load({server.url(u"/gone"_s)});
  EXPECT_FALSE(recorder->failure);
  EXPECT_EQ(recorder->response.status, 404);
  EXPECT_EQ(page->title().toStdString(), "Not here");
}

TEST_F(PageLoadTest, DialogsAndWindowsDoNotHoldUpAPage) {
  server.setPage(
      u"/"_s,
      "<script>alert('one'); window.answer = confirm('two'); window.text = prompt('three');"
      "window.opened = window.open('/other');</script><title>Past them</title>");
  openPage();
  load({server.url(u"/"_s)});
  EXPECT_EQ(page->title().toStdString(), "Past them");
  EXPECT_EQ(evaluate(u"[window.answer, window.text]"_s)->toArray().toVariantList(),
            QVariantList({false, QVariant::fromValue(nullptr)}));
  EXPECT_FALSE(server.requests().contains(u"/other"_s));
}

TEST_F(PageLoadTest, StoppingEndsALoadWithoutAFailure) {
  server.set(u"/never"_s, {"", "", "", "", Answer::Kind::Never});
  openPage();
  page->load({server.url(u"/never"_s)});
  ASSERT_TRUE(support::waitFor([this] { return recorder->count("start") == 1; }));
  page->stopLoading();
  ASSERT_TRUE(support::waitFor([this] { return recorder->count("idle") == 1; }));
  EXPECT_FALSE(recorder->ended());
  server.setPage(u"/"_s, "<title>After</title>");
  load({server.url(u"/"_s)});
  EXPECT_FALSE(recorder->failure);
  EXPECT_EQ(page->title().toStdString(), "After");
}

TEST_F(PageLoadTest, ANewLoadReplacesTheOneUnderWay) {
  server.set(u"/never"_s, {"", "", "", "", Answer::Kind::Never});
  server.setPage(u"/"_s, "<title>Second</title>");
  openPage();
  page->load({server.url(u"/never"_s), {}, std::chrono::milliseconds(200)});
  load({server.url(u"/"_s)});
  EXPECT_FALSE(recorder->failure);
  EXPECT_EQ(page->title().toStdString(), "Second");
}

TEST_F(PageLoadTest, AnAddressWithAFragmentLoadsAnew) {
  server.setPage(u"/"_s, "<title>Page</title><p id=part>");
  openPage();
  QUrl url = server.url(u"/"_s);
  load({url});
  recorder->events.clear();
  url.setFragment(u"part"_s);
  load({url});
  EXPECT_EQ(server.requests(), QStringList({u"/"_s, u"/"_s}));
  EXPECT_EQ(page->currentURL(), url);
  // An address that a script puts there counts too.
  EXPECT_TRUE(evaluate(u"history.pushState({}, '', '/pushed')"_s));
  EXPECT_TRUE(support::waitFor([&] { return page->currentURL() == server.url(u"/pushed"_s); }));
}

TEST_F(PageLoadTest, LocalFilesLoadOnlyWhereTheyAreAllowed) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"page.html"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("<title>From a file</title>");
  file.close();
  const QUrl url = QUrl::fromLocalFile(file.fileName());
  openPage();
  load({url});
  ASSERT_TRUE(recorder->failure);
  EXPECT_EQ(recorder->failure->code, web::LocalFileRefused);
  openPage();
  load({url, {}, std::chrono::seconds(5), web::LocalFiles::Allowed});
  EXPECT_FALSE(recorder->failure);
  EXPECT_EQ(page->title().toStdString(), "From a file");
}

TEST_F(PageLoadTest, LayoutHasTheConfiguredSizeAndScreenStyles) {
  web::PageConfiguration configuration;
  configuration.layoutWidth = 640;
  configuration.deviceScaleFactor = 2;
  openPage(configuration);
  server.setPage(u"/"_s,
                 "<style>@media print {body {width: 1px}}</style><p style='height:5000px'>");
  load({server.url(u"/"_s)});
  EXPECT_EQ(
      evaluate(
          u"[innerWidth, innerHeight, devicePixelRatio, document.documentElement.clientWidth]"_s)
          ->toArray(),
      QJsonArray({640, 768, 2, 640}));
  EXPECT_GT(evaluate(u"document.body.offsetWidth"_s)->toInt(), 1);
}

TEST_F(PageLoadTest, PrivatePagesShareNoCookies) {
  server.set(u"/set"_s, {"<p>", "text/html", "200 OK", "Set-Cookie: name=shared\r\n"});
  server.setPage(u"/ask"_s, "<p>");
  openPage();
  load({server.url(u"/set"_s)});
  openPage();
  load({server.url(u"/ask"_s)});
  EXPECT_TRUE(server.head(u"/ask"_s).contains("name=shared"));
  web::PageConfiguration configuration;
  configuration.profile = web::Profile::Private;
  openPage(configuration);
  load({server.url(u"/ask"_s)});
  EXPECT_FALSE(server.head(u"/ask"_s).contains("name=shared"));
}

}  // namespace
