#include "RenderingTest.h"
#include "support/HttpServer.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class SettleTest : public RenderingTest {
 protected:
  bool evaluateTrue(const QString& script) { return evaluate(script).toBool(); }
  /// A document of the loopback server: what it names there is no request into a private network.
  void openServed(const QByteArray& body, const web::PageConfiguration& configuration = {}) {
    server.setPage(u"/"_s, body);
    open({.url = server.url(u"/"_s)}, configuration);
  }

  HttpServer server;
};

const QByteArray greenPicture =
    "<svg xmlns='http://www.w3.org/2000/svg' width='50' height='50'><rect width='50' height='50' "
    "fill='green'/></svg>";

TEST_F(SettleTest, MotionEndsWhereItLeads) {
  for (const web::Scripts scripts : {web::Scripts::Enabled, web::Scripts::Disabled}) {
    openFixture(u"motion.html"_s, {.scripts = scripts});
    EXPECT_FALSE(settle());
    const QImage image = picture();
    EXPECT_EQ(colour(image, 5, 50), "008000") << "a finite animation shows its end";
    EXPECT_EQ(colour(image, 5, 150), "0000ff") << "an endless one its unanimated state";
    if (scripts == web::Scripts::Disabled) continue;
    EXPECT_EQ(colour(image, 5, 250), "008080") << "a transition is through";
    EXPECT_EQ(colour(image, 5, 350), "800080") << "in shadow trees too";
  }
}

TEST_F(SettleTest, ReducedMotionIsAskedForAndScreenStylesStay) {
  openMarkup(u"<!DOCTYPE html>"_s);
  EXPECT_FALSE(settle());
  EXPECT_TRUE(evaluateTrue(u"matchMedia('(prefers-reduced-motion: reduce)').matches"_s));
  EXPECT_TRUE(evaluateTrue(u"matchMedia('screen').matches"_s));
}

TEST_F(SettleTest, LazyPicturesAndObserversAreServed) {
  openFixture(u"lazy.html"_s);
  evaluate(u"scrollTo(0, 300)"_s);
  EXPECT_FALSE(settle());
  EXPECT_EQ(evaluate(u"scrollY"_s).toInt(), 0);
  const QImage image = picture();
  EXPECT_EQ(colour(image, 100, 2100), "008000");
  EXPECT_EQ(colour(image, 100, 4250), "0000ff") << "an observer saw its section";
  EXPECT_EQ(colour(image, 100, 6400), "008000");
}

TEST_F(SettleTest, LazyPicturesComeWithScriptsOff) {
  openFixture(u"lazy.html"_s, {.scripts = web::Scripts::Disabled});
  EXPECT_FALSE(settle());
  EXPECT_EQ(colour(picture(), 100, 6400), "008000");
}

TEST_F(SettleTest, AnObserverWithoutOtherMarksMakesThePageBeWalkedThrough) {
  openMarkup(
      u"<!DOCTYPE html><body><div style='height:4000px'></div><p>x</p><script>"
      "new IntersectionObserver((entries) => { if (entries[0].isIntersecting) document.title = "
      "'seen' })"
      ".observe(document.querySelector('p'))</script>"_s);
  EXPECT_FALSE(settle());
  EXPECT_EQ(evaluate(u"document.title"_s).toString(), u"seen"_s);
}

TEST_F(SettleTest, ObserversThatThePageMakesAreItsOwn) {
  openMarkup(
      u"<!DOCTYPE html><script>class Own extends IntersectionObserver {};"
      "const own = new Own(() => {}); document.title = [own instanceof IntersectionObserver,"
      "own.constructor === Own, String(IntersectionObserver).includes('[native code]'),"
      "new IntersectionObserver(() => {}).constructor === IntersectionObserver]</script>"_s);
  EXPECT_EQ(evaluate(u"document.title"_s).toString().toStdString(), "true,true,true,true");
}

TEST_F(SettleTest, ADocumentThatWasWrittenAnewIsWalkedThrough) {
  openMarkup(u"<!DOCTYPE html><body style='height:9000px'>"_s);
  evaluate(
      u"document.open(); document.write('<body style=\"height:9000px\">'); document.close();"
      "window.lowest = 0;"
      "addEventListener('scroll', () => { lowest = Math.max(lowest, scrollY) })"_s);
  EXPECT_FALSE(settle());
  EXPECT_GT(evaluate(u"new Promise((r) => requestAnimationFrame(() => r(lowest)))"_s).toInt(), 0)
      << "it has lost what would have noticed its observers";
}

TEST_F(SettleTest, APageWithoutObserversIsNotWalkedThrough) {
  openMarkup(
      u"<!DOCTYPE html><body style='height:9000px'><script>let lowest = 0;"
      "addEventListener('scroll', () => { lowest = Math.max(lowest, scrollY) })</script>"_s);
  EXPECT_FALSE(settle());
  EXPECT_EQ(evaluate(u"new Promise((r) => requestAnimationFrame(() => r(lowest)))"_s).toInt(), 0);
}

TEST_F(SettleTest, EndlessPagesHaveAnEnd) {
  openFixture(u"endless.html"_s);
  EXPECT_FALSE(settle());
  const double height = size().height();
  EXPECT_GT(height, 3006) << "it was followed";
  EXPECT_LT(height, 3006 * 2 + 768 * 14) << "but not for ever";
  EXPECT_EQ(picture().height(), height);
}

TEST_F(SettleTest, LatePicturesOfALoadedPageSurviveThatItIsStopped) {
  server.set(u"/late.svg"_s,
             {.body = greenPicture, .contentType = "image/svg+xml", .delay = 400ms});
  openServed("<!DOCTYPE html><body style='margin:0'><img loading=lazy src='/late.svg'>");
  page->stopLoading();
  EXPECT_FALSE(settle());
  EXPECT_EQ(colour(picture(), 5, 5), "008000");
}

TEST_F(SettleTest, PicturesAndFontsOnTheirWayAreWaitedFor) {
  server.set(u"/late.svg"_s,
             {.body = greenPicture, .contentType = "image/svg+xml", .delay = 600ms});
  server.set(u"/late.woff2"_s, {.body = "no font", .contentType = "font/woff2", .delay = 700ms});
  // Both are asked for after the load event, which would wait for them.
  for (const web::Scripts scripts : {web::Scripts::Enabled, web::Scripts::Disabled}) {
    openServed("<!DOCTYPE html><body>text", {.scripts = scripts});
    evaluate(
        u"document.body.insertAdjacentHTML('beforeend', `<style>@font-face { font-family: late; "
        "src: url(%1) } body { font-family: late }</style><img src='%2'>`); document.body.offsetTop"_s
            .arg(server.url(u"/late.woff2"_s).toString(), server.url(u"/late.svg"_s).toString()));
    EXPECT_FALSE(settle());
    EXPECT_TRUE(
        evaluateTrue(u"document.images[0].complete && document.images[0].naturalWidth === 50"_s));
    EXPECT_EQ(evaluate(u"document.fonts.status"_s).toString(), u"loaded"_s);
  }
  EXPECT_EQ(server.requests().count(u"/late.woff2"_s), 2);
}

TEST_F(SettleTest, WhatNeverComesIsGivenUp) {
  server.set(u"/never.svg"_s, {.kind = HttpServer::Answer::Kind::Never});
  server.set(u"/never.woff2"_s, {.kind = HttpServer::Answer::Kind::Never});
  openServed("<!DOCTYPE html><body>text");
  evaluate(
      u"document.body.insertAdjacentHTML('beforeend', `<style>@font-face { font-family: late; "
      "src: url(%1) } body { font-family: late }</style><img src='%2'>`); document.body.offsetTop"_s
          .arg(server.url(u"/never.woff2"_s).toString(), server.url(u"/never.svg"_s).toString()));
  EXPECT_FALSE(settle({.fontLimit = 200ms, .pictureLimit = 300ms}));
  EXPECT_FALSE(evaluateTrue(u"document.images[0].complete"_s));
}

TEST_F(SettleTest, FramesOfOtherOriginsComeToRestToo) {
  server.setPage(u"/frame"_s,
                 "<!DOCTYPE html><style>body{margin:0;animation:a 30s forwards}"
                 "@keyframes a{from{background:red}to{background:green}}</style>");
  openServed(
      "<!DOCTYPE html><style>body{margin:0}iframe{border:0;display:block}</style><iframe src='" +
      server.url(u"/frame"_s, u"localhost"_s).toEncoded() + "'></iframe>");
  EXPECT_FALSE(settle());
  EXPECT_EQ(colour(picture(), 10, 10), "008000");
}

TEST_F(SettleTest, AHostilePageCannotMisleadTheScripts) {
  openMarkup(
      u"<!DOCTYPE html><body style='margin:0'><form name=fonts></form><a id=corvalisPage></a>"
      "<div style='height:1500px'></div><script>Array.prototype.filter = () => { throw 1 };"
      "Array.prototype.toJSON = () => 'x'; window.getComputedStyle = () => null;"
      "document.getAnimations = null; Element.prototype.getBoundingClientRect = null;</script>"_s);
  EXPECT_FALSE(settle());
  EXPECT_EQ(picture().height(), 1500);
}

}  // namespace
