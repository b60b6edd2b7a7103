#include "RenderingTest.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace {

/// A page of coloured rows: the row at y says y, in steps of 100.
QString ladder(int height) {
  return u"<!DOCTYPE html><style>body{margin:0}div{height:100px}</style><script>"
         "for (let y = 0; y < %1; y += 100) document.write("
         "`<div style=\"background:rgb(${y / 100 & 255},${y / 25600 & 255},77)\"></div>`);"
         "</script>"_s.arg(height);
}

QRgb ladderColour(int y) {
  return qRgb(y / 100 & 255, y / 25600 & 255, 77);
}

/// Holds no picture: checks each row as it passes.
class LadderCheck : public rendering::PictureReceiver {
 public:
  explicit LadderCheck(double scale) : scale_(scale) {}
  MaybeError began(QSize) override {
    row_ = 0;
    wrongRow = -1;
    return {};
  }
  MaybeError rows(const QImage& strip) override {
    tallest = qMax(tallest, strip.height());
    for (int y = 0; y < strip.height(); ++y, ++row_) {
      const QRgb expected = ladderColour(int(row_ / scale_));
      const bool right =
          strip.pixel(0, y) == expected && strip.pixel(strip.width() - 1, y) == expected;
      if (!right && wrongRow < 0) wrongRow = row_;
    }
    return {};
  }
  int wrongRow = -1;
  int tallest = 0;
  int row() const { return row_; }

 private:
  double scale_;
  int row_ = 0;
};

class PictureTest : public RenderingTest {
 protected:
  void checkLadder(int height, double scale, double pageScale = 1) {
    openMarkup(ladder(height), {.deviceScaleFactor = pageScale});
    const auto check = std::make_shared<LadderCheck>(scale);
    const auto result = await<Result<rendering::CapturedPicture>>(
        [&](auto done) { rendering::capturePicture(page, {.scale = scale}, check, done); });
    ASSERT_TRUE(result) << result.error().localizedDescription.toStdString();
    EXPECT_EQ(result->devicePixels, QSize(int(1024 * scale), int(height * scale)));
    EXPECT_EQ(result->size, QSizeF(1024, height));
    EXPECT_EQ(check->row(), int(height * scale));
    EXPECT_EQ(check->wrongRow, -1);
    EXPECT_LE(check->tallest, 16384) << "the engine leaves higher strips empty";
  }
};

TEST_F(PictureTest, TallPagesAreRightInEveryRow) {
  checkLadder(100000, 1);
}

TEST_F(PictureTest, ScaledStripsMeetWithoutSeams) {
  checkLadder(20000, 2);
  checkLadder(12300, 1.25);
  checkLadder(20000, 2, 2);
  checkLadder(9000, 1, 2);
}

TEST_F(PictureTest, BarsStandOnceAtTheirPlaces) {
  openFixture(u"bars.html"_s);
  const QString before = evaluate(u"document.documentElement.outerHTML"_s).toString();
  const QImage image = picture();
  ASSERT_EQ(image.size(), QSize(1024, 3070));
  EXPECT_EQ(colour(image, 500, 25), "008000") << "fixed header";
  EXPECT_EQ(colour(image, 500, 1020), "ffa500") << "sticky bar";
  EXPECT_EQ(colour(image, 500, 2050), "800080") << "bar that sticks to the bottom";
  EXPECT_EQ(colour(image, 500, 3040), "0000ff") << "fixed footer";
  for (const int row : {60, 738, 767, 769, 990, 1045, 2020, 2075, 3005}) {
    EXPECT_EQ(colour(image, 500, row), "f0f0f0") << "row " << row;
  }
  EXPECT_EQ(evaluate(u"document.documentElement.outerHTML"_s).toString(), before);
}

/// The engine leaves bars out now and then, so each page is pictured more than once.
TEST_F(PictureTest, ABarAtTheBottomIsInEveryPicture) {
  const QString bar =
      u"<p style='position:fixed;bottom:0;margin:0;height:40px;background:rgb(0,0,255)'>bar</p>"_s;
  const QString before =
      u"<!DOCTYPE html><body style='margin:0;font:20px sans-serif'><h1>Words</h1>"_s
      "<div style='height:1700px'></div>";
  const std::pair<const char*, QString> cases[] = {
      {"in the body", before + u"<h2>End</h2>"_s + bar},
      {"in a box around the whole page",
       u"<!DOCTYPE html><body style='margin:0'><div style='position:relative;overflow:hidden;"_s
       "height:1800px;background:rgb(255,255,0)'>" +
           bar + u"<h1>Words</h1></div>"_s}};
  for (const auto& [name, markup] : cases) {
    for (int time = 0; time < 5; ++time) {
      openMarkup(markup);
      const QImage image = picture();
      EXPECT_EQ(colour(image, 2, image.height() - 2), "0000ff") << name;
      EXPECT_NE(colour(image, 2, 766), "0000ff") << name;
    }
  }
}

TEST_F(PictureTest, DrawersBesideTheScreenStayUnseenOnWidePages) {
  openMarkup(
      u"<!DOCTYPE html><body style='margin:0'><div style='width:1600px;height:900px;"_s
      "background:rgb(255,255,0)'></div><div style='position:fixed;top:0;right:-300px;width:300px;"
      "height:300px;background:rgb(255,0,0)'></div>");
  const QImage image = picture();
  ASSERT_EQ(image.size(), QSize(1600, 900));
  EXPECT_EQ(colour(image, 1100, 150), "ffff00");
}

TEST_F(PictureTest, ViewportLengthsKeepTheirSize) {
  openFixture(u"hero.html"_s);
  const QImage image = picture();
  ASSERT_EQ(image.size(), QSize(1024, 768 + 10 + 100 + 200 + 384 + 77 + 40));
  EXPECT_EQ(colour(image, 10, 767), "ff0000");
  EXPECT_EQ(colour(image, 10, 770), "00ff00");
  EXPECT_EQ(colour(image, 10, 800), "0000ff");
}

struct SizeCase {
  const char* name;
  QString markup;
  QSizeF size;
};

TEST_F(PictureTest, DocumentsHaveTheSizeOfTheirBoxes) {
  const QString html = u"<!DOCTYPE html><style>body{margin:0}</style>"_s;
  const SizeCase cases[] = {
      {"empty", html, {1024, 0}},
      {"low", html + u"<div style='height:40px'>"_s, {1024, 40}},
      {"margins of the body", u"<!DOCTYPE html><div style='height:40px'>"_s, {1024, 56}},
      {"quirks", u"<body style='margin:10px'><div style='height:280px'>"_s, {1024, 300}},
      {"quirks, bare text", u"<body style='margin:0;font:20px/30px serif'>a<br>b"_s, {1024, 57}},
      {"positioned below",
       html + u"<div style='position:absolute;top:500px;height:50px'>x"_s,
       {1024, 550}},
      {"fills the viewport", html + u"<div style='height:100vh'>"_s, {1024, 768}},
      {"bar at the bottom",
       html + u"<div style='position:fixed;bottom:0;height:9px;width:9px'>"_s,
       {1024, 768}},
      {"fraction", html + u"<div style='height:900.4px'>"_s, {1024, 900}},
      {"wide", html + u"<div style='height:800px;width:2600px'>"_s, {2600, 800}},
      {"hidden to the right",
       u"<!DOCTYPE html><style>body{margin:0;overflow-x:hidden}</style><div style='height:800px;width:2600px'>"_s,
       {1024, 800}},
      {"locked scrolling",
       u"<!DOCTYPE html><style>body{margin:0;overflow:hidden;height:100%}</style><div style='height:3000px'>"_s,
       {1024, 3000}},
      {"far off screen",
       html + u"<p style='position:absolute;left:-9999px'>x</p><div style='height:9px'>"_s,
       {1024, 9}},
  };
  for (const SizeCase& test : cases) {
    openMarkup(test.markup);
    const QSizeF found = size();
    EXPECT_EQ(found.width(), test.size.width()) << test.name;
    EXPECT_NEAR(found.height(), test.size.height(), 1) << test.name;
  }
}

TEST_F(PictureTest, FixedBackgroundsReachTheEnd) {
  const QString end = u"<div style='height:3000px'></div>"_s;
  const std::pair<const char*, QString> cases[] = {
      {"attachment",
       u"<style>body{margin:0;background:linear-gradient(lime,lime) fixed}</style>"_s},
      {"element",
       u"<style>body{margin:0}i{position:fixed;z-index:-1;inset:0;background:lime}</style><i></i>"_s},
      {"pseudo-element",
       u"<style>body{margin:0}body::before{content:'';position:fixed;z-index:-1;top:0;left:0;"
       "width:100%;height:100vh;background:lime}</style>"_s}};
  for (const auto& [name, markup] : cases) {
    openMarkup(u"<!DOCTYPE html>"_s + markup + end);
    const QImage image = picture();
    for (const int row : {5, 760, 780, 2995})
      EXPECT_EQ(colour(image, 500, row), "00ff00") << name << row;
  }
}

TEST_F(PictureTest, LowDocumentsFollowTheCallersRule) {
  openFixture(u"low.html"_s);
  EXPECT_EQ(picture().size(), QSize(1024, 40));
  const QImage high = picture({.lowDocument = {100, 1000}});
  ASSERT_EQ(high.size(), QSize(1024, 1000));
  EXPECT_EQ(colour(high, 5, 39), "008000");
  EXPECT_EQ(colour(high, 5, 41), "ffffff");
  EXPECT_EQ(colour(high, 5, 999), "ffffff");
  EXPECT_EQ(picture({.lowDocument = {40, 1000}}).height(), 40) << "not below the limit";
}

TEST_F(PictureTest, WidePagesAreWholeToTheRight) {
  openFixture(u"wide.html"_s);
  const QImage image = picture();
  ASSERT_EQ(image.size(), QSize(2600, 400));
  EXPECT_EQ(colour(image, 2590, 200), "008000");
  EXPECT_EQ(colour(image, 1023, 50), "0000ff");
  EXPECT_EQ(colour(image, 1025, 50), "ffffff");
  EXPECT_EQ(colour(image, 510, 350), "0000ff");
}

TEST_F(PictureTest, TheViewportIsPicturedAsItIsScrolled) {
  openMarkup(ladder(5000));
  evaluate(u"scrollTo(0, 768)"_s);
  const auto thumbnail =
      await<Result<QImage>>([&](auto done) { rendering::viewportPicture(page, done); });
  ASSERT_TRUE(thumbnail);
  ASSERT_EQ(thumbnail->size(), QSize(1024, 768));
  EXPECT_EQ(thumbnail->pixel(3, 0), ladderColour(768));
  EXPECT_EQ(thumbnail->pixel(3, 767), ladderColour(1535));
  const QImage scaled = picture({.scale = 0.5, .area = rendering::PictureArea::Viewport});
  EXPECT_EQ(scaled.size(), QSize(512, 384));
  EXPECT_EQ(scaled.pixel(3, 100), ladderColour(968));

  EXPECT_EQ(picture().pixel(3, 0), ladderColour(0)) << "the whole document begins at its top";
  EXPECT_EQ(evaluate(u"scrollY"_s).toInt(), 768) << "and leaves the page where it stood";
}

/// A canvas whose page gets a footer while its first picture is taken.
class GrowingCanvas : public Canvas {
 public:
  explicit GrowingCanvas(std::shared_ptr<web::Page> page) : page_(std::move(page)) {}
  MaybeError rows(const QImage& strip) override {
    if (beginnings == 1 && !std::exchange(grown_, true)) dispatch::mainAsync([this] { grow(); });
    return Canvas::rows(strip);
  }

 private:
  void grow() {
    page_->evaluate(
        u"document.body.insertAdjacentHTML('beforeend',"
        "'<p style=\"margin:0;height:500px;background:lime\">')"_s,
        [](const auto&) {});
  }

  std::shared_ptr<web::Page> page_;
  bool grown_ = false;
};

TEST_F(PictureTest, APageThatGrowsWhileItIsPicturedIsPicturedAgain) {
  openMarkup(ladder(50000));
  const auto growing = std::make_shared<GrowingCanvas>(page);
  const auto result = await<Result<rendering::CapturedPicture>>(
      [&](auto done) { rendering::capturePicture(page, {}, growing, done); });
  ASSERT_TRUE(result);
  ASSERT_EQ(growing->picture.height(), 50500);
  EXPECT_EQ(growing->beginnings, 2);
  EXPECT_EQ(colour(growing->picture, 5, 50499), "00ff00");
}

TEST_F(PictureTest, APageThatNeverStopsGrowingIsTakenInTheEnd) {
  openMarkup(
      u"<!DOCTYPE html><body style='margin:0;background:lime'><div "
      u"style='height:1000px'></div><script>"
      "setInterval(() => { document.querySelector('div').style.height ="
      "document.querySelector('div').offsetHeight + 100 + 'px'; }, 5)</script>"_s);
  EXPECT_GE(picture().height(), 1000);
  EXPECT_EQ(canvas->beginnings, 3);
}

TEST_F(PictureTest, ABrowserThatClipsPagesToTheViewportGivesTheSamePictures) {
  web::EngineOptions clipping{.use = web::EngineUse::Conversions};
  // The last switch of a name counts: as if the browser did not know ours.
  clipping.extraArguments = QStringList{u"--blink-settings=hideScrollbars=true"_s};
  engine() = std::make_unique<web::Engine>(clipping);
  checkLadder(20000, 1);
  openFixture(u"wide.html"_s);
  EXPECT_EQ(colour(picture(), 2599, 150), "008000");
  openMarkup(u"<!DOCTYPE html><body style='margin:0'><div style='height:3000px'>blank"_s);
  EXPECT_EQ(picture().height(), 3000);
  EXPECT_EQ(canvas->beginnings, 2) << "white rows are asked for in the other way, once";
  SetUpTestSuite();
}

TEST_F(PictureTest, OperationsOnOnePageTakeTurns) {
  openMarkup(ladder(3000));
  evaluate(u"scrollTo(0, 400)"_s);
  int ended = 0;
  const auto whole = std::make_shared<Canvas>();
  rendering::capturePicture(page, {}, whole, [&](const auto&) { EXPECT_EQ(++ended, 1); });
  rendering::viewportPicture(page, [&](Result<QImage> image) {
    EXPECT_EQ(++ended, 2);
    EXPECT_EQ(image->pixel(3, 0), ladderColour(400)) << "pictured while another operation scrolled";
  });
  ASSERT_TRUE(support::waitFor([&] { return ended == 2; }));
  EXPECT_EQ(whole->picture.pixel(3, 0), ladderColour(0));
}

}  // namespace
