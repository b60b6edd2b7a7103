#include <gmock/gmock.h>

#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>

#include "EngineFixture.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace {

class MarkupTest : public EngineTest {
 protected:
  void openWithoutScripts() {
    web::PageConfiguration configuration;
    configuration.scripts = web::Scripts::Disabled;
    openPage(configuration);
  }
  void show(const QUrl& url, const QString& markup,
            web::LocalFiles files = web::LocalFiles::Refused) {
    load({url, markup, std::chrono::seconds(5), files});
  }
};

TEST_F(MarkupTest, IsShownAtItsAddressWithoutAskingForIt) {
  server.set(u"/pictures/dot.svg"_s,
             {"<svg xmlns='http://www.w3.org/2000/svg' width='7' height='7'/>", "image/svg+xml"});
  openWithoutScripts();
  const QUrl url = server.url(u"/a/page?x=1#part"_s);
  show(url,
       u"<!DOCTYPE html><title>Gesch\u00f6nt \u2014 \u65e5\u672c</title>"
       "<img src='../pictures/dot.svg'><script>document.title='run'</script>"_s);
  EXPECT_EQ(recorder->events.join(u' ').toStdString(), "loading start commit title finish idle");
  EXPECT_EQ(page->title(), u"Gesch\u00f6nt \u2014 \u65e5\u672c"_s);
  EXPECT_EQ(page->currentURL(), url);
  EXPECT_EQ(server.requests(), QStringList(u"/pictures/dot.svg"_s));
  EXPECT_EQ(
      evaluate(
          u"[location.href, document.baseURI, document.compatMode, document.images[0].naturalWidth]"_s)
          ->toArray(),
      QJsonArray({url.toString(), url.toString(), u"CSS1Compat"_s, 7}));
}

TEST_F(MarkupTest, CanBeShownAtEveryKindOfAddress) {
  const std::pair<QUrl, const char*> rows[] = {
      {QUrl(u"https://secure.example/page"_s), "https://secure.example/page"},
      {QUrl(u"file:///nowhere/page.html"_s), "file:///nowhere/page.html"},
      {QUrl(u"about:blank"_s), "http://document.invalid/"},
      {QUrl(u"safari-extension://x/y"_s), "http://document.invalid/"},
      {QUrl(), "http://document.invalid/"},
  };
  for (const auto& [url, location] : rows) {
    openWithoutScripts();
    show(url, u"<!DOCTYPE html><title>Here</title>"_s);
    EXPECT_FALSE(recorder->failure) << location;
    EXPECT_EQ(page->title().toStdString(), "Here") << location;
    EXPECT_EQ(text(u"location.href"_s).toStdString(), location);
    EXPECT_EQ(page->currentURL(), url) << location;
  }
}

TEST_F(MarkupTest, DoesNotNavigateAway) {
  server.setPage(u"/elsewhere"_s, "<title>Elsewhere</title>");
  openPage();
  show(server.url(u"/page"_s),
       u"<!DOCTYPE html><meta http-equiv=refresh content='0; url=/elsewhere'><title>Stays</title>"
       "<script>setTimeout(()=>{location='/elsewhere'; window.done=1}, 20)</script>"_s);
  ASSERT_TRUE(support::waitFor([this] { return evaluate(u"window.done"_s)->toInt() == 1; }));
  EXPECT_EQ(text(u"document.title"_s).toStdString(), "Stays");
  EXPECT_EQ(recorder->count("finish"), 1);
  EXPECT_FALSE(recorder->failure);
  EXPECT_EQ(server.requests(), QStringList());
}

TEST_F(MarkupTest, ReadsNoLocalFileWhateverItsAddress) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"secret.svg"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("<svg xmlns='http://www.w3.org/2000/svg' width='7' height='7'/>");
  file.close();
  const QString secret = QUrl::fromLocalFile(file.fileName()).toString();
  const QString markup =
      u"<!DOCTYPE html><img src='%1'><iframe src='%1'></iframe><object data='%1'></object>"
      "<link rel=stylesheet href='%1'><script src='%1'></script>"_s.arg(secret);
  for (const QUrl& url :
       {QUrl::fromLocalFile(folder.filePath(u"page.html"_s)), server.url(u"/page"_s)}) {
    openPage();
    show(url, markup);
    EXPECT_FALSE(recorder->failure);
    EXPECT_EQ(evaluate(u"document.images[0].naturalWidth"_s)->toInt(), 0);
    std::vector<web::FrameValue> values;
    page->evaluateInFrames(
        u"document.documentElement.outerHTML"_s,
        [&values](std::vector<web::FrameValue> found) { values = std::move(found); });
    ASSERT_TRUE(support::waitFor([&values] { return !values.empty(); }));
    for (size_t index = 1; index < values.size(); ++index)
      EXPECT_FALSE(values[index].value.value_or(QJsonValue()).toString().contains(u"<svg"));
  }
}

TEST_F(MarkupTest, MayBeLargerThanAMessage) {
  const QString filler = u"<!-- %1 -->"_s.arg(QString(60 << 20, u'x'));
  for (const QUrl& url : {server.url(u"/large"_s), QUrl(u"file:///nowhere/large.html"_s)}) {
    openWithoutScripts();
    show(url, u"<!DOCTYPE html><title>Large \u00e9</title>"_s + filler + u"<p id=last>"_s);
    ASSERT_FALSE(recorder->failure) << recorder->failure->localizedDescription.toStdString();
    EXPECT_EQ(text(u"document.querySelector('#last') ? document.title : ''"_s), u"Large \u00e9"_s);
    EXPECT_EQ(page->currentURL(), url);
    EXPECT_EQ(text(u"location.href"_s), url.toString());
  }
}

TEST_F(MarkupTest, HeldPagesKeepTheirDocument) {
  server.setPage(u"/"_s, "<title>Held</title>");
  server.setPage(u"/elsewhere"_s, "<title>Elsewhere</title>");
  openPage();
  load({server.url(u"/"_s)});
  page->holdDocument();
  evaluate(u"new Promise(done => {location='/elsewhere'; setTimeout(done, 200)})"_s);
  EXPECT_EQ(text(u"document.title"_s).toStdString(), "Held");
  recorder->events.clear();
  load({server.url(u"/elsewhere"_s)});
  EXPECT_EQ(page->title().toStdString(), "Elsewhere");
}

}  // namespace
