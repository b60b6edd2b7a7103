#include <QFileInfo>

#include "RenderingTest.h"
#include "support/HttpServer.h"

using namespace Qt::StringLiterals;

namespace {

const rendering::PageSetup a4{{595, 842}, {50, 40, 50, 60}};

class PrintTest : public RenderingTest {
 protected:
  static int pagesOf(const QString& path) {
    return outputOf(u"qpdf"_s, {u"--show-npages"_s, path}).trimmed().toInt();
  }
  static void expectSound(const QString& path) {
    const QString report = outputOf(u"qpdf"_s, {u"--check"_s, path});
    EXPECT_TRUE(report.contains(u"No syntax or stream encoding errors"_s)) << report.toStdString();
  }
  static QString textOf(const QString& path) { return outputOf(u"pdftotext"_s, {path, u"-"_s}); }

  /// One page of the document's size, within the point that the engine rounds paper by.
  void expectOnePage(const QString& path, QSizeF size) {
    EXPECT_EQ(pagesOf(path), 1);
    EXPECT_NEAR(printed->pageSize.width(), size.width(), 1);
    EXPECT_NEAR(printed->pageSize.height(), size.height(), 1);
    expectSound(path);
  }
};

TEST_F(PrintTest, ViewportLengthsKeepTheirScreenSize) {
  openFixture(u"hero.html"_s);
  const QString before = evaluate(u"document.documentElement.outerHTML"_s).toString();
  const QString path = printTall();
  expectOnePage(path, {1024, 1579});
  const QImage image = pdfPixels(path);
  EXPECT_EQ(colour(image, 10, 766), "ff0000") << "100vh";
  EXPECT_EQ(colour(image, 10, 772), "00ff00") << "a class with a length in its name";
  EXPECT_EQ(colour(image, 10, 782), "0000ff") << "a media feature of the height";
  EXPECT_EQ(colour(image, 10, 1070), "808080") << "a style attribute";
  EXPECT_EQ(colour(image, 10, 1455), "ffff00") << "a rule of a script";
  EXPECT_EQ(colour(image, 10, 1465), "00ffff") << "an adopted sheet";
  EXPECT_EQ(colour(image, 10, 1545), "ffffff");
  EXPECT_EQ(evaluate(u"document.documentElement.outerHTML"_s).toString(), before);
  EXPECT_EQ(
      evaluate(
          u"document.styleSheets[0].cssRules[1].style.height + document.adoptedStyleSheets.length +"
          "document.adoptedStyleSheets[0].cssRules[0].style.height"_s)
          .toString(),
      u"100vh110vmin"_s);
}

TEST_F(PrintTest, SharesOfTheViewportKeepTheirScreenSize) {
  const QString shared =
      u"<div style='height:100%;overflow:hidden;background:rgb(255,0,0)'></div>"
      "<div style='height:500px;background:rgb(0,0,255)'></div>"_s;
  const QString placed =
      u"<div style='position:absolute;bottom:0;height:30px;width:30px;background:rgb(0,128,0)'></div>"_s;
  const std::pair<const char*, QString> cases[] = {
      {"standards",
       u"<!DOCTYPE html><style>html,body{height:100%;margin:0}</style>"_s + shared + placed},
      {"quirks", u"<body style='margin:0'>"_s + shared + placed}};
  for (const auto& [name, markup] : cases) {
    openMarkup(markup);
    const QString path = printTall();
    expectOnePage(path, {1024, 1268});
    const QImage image = pdfPixels(path);
    EXPECT_EQ(colour(image, 500, 766), "ff0000") << name;
    EXPECT_EQ(colour(image, 500, 770), "0000ff") << name;
    EXPECT_EQ(colour(image, 10, 736), "ff0000") << name;
    EXPECT_EQ(colour(image, 10, 740), "008000") << name;
    EXPECT_EQ(colour(image, 10, 1260), "0000ff") << name;
  }
}

TEST_F(PrintTest, LowQuirksDocumentsAreNotStretchedToTheViewport) {
  openFixture(u"quirks.html"_s);
  const QString path = printTall();
  expectOnePage(path, {1024, 300});
  EXPECT_EQ(colour(pdfPixels(path), 500, 280), "008000");
}

TEST_F(PrintTest, RightToLeftDocumentsStandWhereThePictureHasThem) {
  const QString content =
      u"<p style='margin:0;height:100px;width:300px;background:rgb(0,128,0)'>words<p "
      "style='height:500px'>"_s;
  const QString body = u"<body style='margin:20px;width:600px;background:rgb(255,255,0)'"_s;
  for (const QString& markup : {u"<!DOCTYPE html><html dir=rtl>"_s + body + u'>' + content,
                                u"<!DOCTYPE html>"_s + body + u" dir=rtl>"_s + content}) {
    openMarkup(markup);
    const QImage tall = pdfPixels(printTall());
    EXPECT_EQ(colour(tall, 690, 60), "ffff00");
    EXPECT_EQ(colour(tall, 720, 60), "008000");
    EXPECT_EQ(colour(tall, 990, 90), "008000");
    EXPECT_EQ(colour(tall, 1014, 60), "ffff00");
    const QImage first = pdfPixels(printPaginated(a4));
    EXPECT_EQ(colour(first, 380, 80), "ffff00");
    EXPECT_EQ(colour(first, 410, 80), "008000");
    EXPECT_EQ(colour(first, 524, 80), "008000");
    EXPECT_EQ(evaluate(u"document.documentElement.getAttribute('style')"_s).toString(), QString());
    EXPECT_EQ(evaluate(u"getComputedStyle(document.body).direction"_s).toString(), u"rtl"_s);
  }
}

TEST_F(PrintTest, BarsOfWideRightToLeftDocumentsStayAtTheRight) {
  openMarkup(
      u"<!DOCTYPE html><html dir=rtl><body style='margin:0'><div style='width:1600px;height:900px;"
      "background:rgb(255,255,0)'></div><div style='position:fixed;top:0;right:0;width:100px;"
      "height:30px;background:rgb(0,128,0)'></div>"_s);
  const QString path = printTall();
  expectOnePage(path, {1600, 900});
  const QImage image = pdfPixels(path);
  EXPECT_EQ(colour(image, 1490, 15), "ffff00");
  EXPECT_EQ(colour(image, 1510, 15), "008000");
  EXPECT_EQ(colour(image, 1590, 15), "008000");
  EXPECT_EQ(colour(image, 10, 890), "ffff00");
}

TEST_F(PrintTest, SheetsOfOtherOriginsAreSettledToo) {
  HttpServer server;
  server.set(u"/style.css"_s,
             {"div { height: 100vh; background: red } p { margin: 0; height: 200px }", "text/css"});
  server.setPage(u"/"_s, "<!DOCTYPE html><link rel=stylesheet href='" +
                             server.url(u"/style.css"_s, u"localhost"_s).toEncoded() +
                             "'><body style='margin:0'><div></div><p>end");
  open({.url = server.url(u"/"_s)}, {});
  const QString path = printTall();
  expectOnePage(path, {1024, 968});
  EXPECT_EQ(colour(pdfPixels(path), 5, 770), "ffffff");
}

TEST_F(PrintTest, ImportedSheetsAreSettledAndStay) {
  HttpServer server;
  server.setPage(u"/"_s,
                 "<!DOCTYPE html><link rel=stylesheet href=/outer.css><body><p></p><div></div>");
  server.set(u"/outer.css"_s,
             {"@import '/inner.css'; body { margin: 0 } div { height: 50vh; background: blue }",
              "text/css"});
  server.set(u"/inner.css"_s, {"p { margin: 0; height: 100vh; background: red }", "text/css"});
  open({.url = server.url(u"/"_s)}, {});
  const QString path = printTall();
  expectOnePage(path, {1024, 1152});
  EXPECT_EQ(colour(pdfPixels(path), 5, 766), "ff0000");
  EXPECT_EQ(colour(pdfPixels(path), 5, 770), "0000ff");
  EXPECT_EQ(size(), QSizeF(1024, 1152));
}

TEST_F(PrintTest, BarsStandWhereThePictureHasThem) {
  openFixture(u"bars.html"_s);
  const QString path = printTall();
  expectOnePage(path, {1024, 3070});
  const QImage image = pdfPixels(path);
  for (const auto& [row, expected] : std::vector<std::pair<int, const char*>>{{25, "008000"},
                                                                              {60, "f0f0f0"},
                                                                              {738, "f0f0f0"},
                                                                              {1020, "ffa500"},
                                                                              {2050, "800080"},
                                                                              {2990, "f0f0f0"},
                                                                              {3040, "0000ff"}}) {
    EXPECT_EQ(colour(image, 500, row), expected) << "row " << row;
  }
}

TEST_F(PrintTest, AuthorPageRulesAndBreaksDoNotCutATallPage) {
  openFixture(u"pages.html"_s);
  const QSizeF document = size();
  const QString path = printTall();
  expectOnePage(path, document);
  const QString text = textOf(path);
  EXPECT_TRUE(text.contains(u"Last words"_s));
  EXPECT_FALSE(text.contains(u"margin box"_s));
  const QString box = outputOf(u"pdftotext"_s, {u"-bbox"_s, path, u"-"_s});
  EXPECT_TRUE(box.contains(u"xMin=\"0.0"_s)) << "no margin at the left: " << box.toStdString();
}

TEST_F(PrintTest, LinksOutlineAndTagsAreKept) {
  openFixture(u"pages.html"_s);
  for (const QString& path : {printTall(), printPaginated(a4)}) {
    const QString json = outputOf(u"qpdf"_s, {u"--json"_s, u"--json-key=outlines"_s, path});
    for (const char* heading : {"First", "Second", "Third"}) {
      EXPECT_TRUE(json.contains(QLatin1String(heading))) << heading;
    }
    EXPECT_TRUE(outputOf(u"pdfinfo"_s, {path}).contains(QRegularExpression(u"Tagged: +yes"_s)));
    const QString objects =
        outputOf(u"qpdf"_s, {u"--qdf"_s, u"--object-streams=disable"_s, path, u"-"_s});
    EXPECT_TRUE(objects.contains(u"http://127.0.0.1:9/away"_s));
    EXPECT_EQ(objects.count(u"/Subtype /Link"_s), 2);
  }
}

TEST_F(PrintTest, EveryHeightIsOnePage) {
  struct Case {
    int height;
    const char* extra;
  };
  const Case cases[] = {{40, ""},
                        {767, ""},
                        {769, ""},
                        {14401, ""},
                        {30000, ""},
                        {120000, ""},
                        {500, "<p style='margin:0;height:0.3px'>"}};
  for (const Case& test : cases) {
    openMarkup(
        u"<!DOCTYPE html><body style='margin:0;font:16px/20px serif'><div style='height:%1px;"
        "background:rgb(0,128,0)'></div><p style='margin:0;height:20px'>end</p>%2"_s
            .arg(test.height)
            .arg(QLatin1String(test.extra)));
    const QString path = printTall();
    EXPECT_EQ(pagesOf(path), 1) << test.height;
    EXPECT_NEAR(printed->pageSize.height(), test.height + 20 + (*test.extra ? 1 : 0), 1)
        << test.extra;
    EXPECT_EQ(textOf(path).trimmed(), u"end"_s) << test.height;
    const QImage end = pdfPixels(path, 1, {0, test.height - 10, 1024, 30});
    EXPECT_EQ(colour(end, 900, 8), "008000") << test.height;
    EXPECT_EQ(colour(end, 900, 12), "ffffff") << test.height;
  }
}

TEST_F(PrintTest, WidePagesKeepTheirLayout) {
  openFixture(u"wide.html"_s);
  const QString path = printTall();
  expectOnePage(path, {2600, 400});
  const QImage image = pdfPixels(path);
  EXPECT_EQ(colour(image, 1020, 50), "0000ff");
  EXPECT_EQ(colour(image, 1030, 50), "ffffff") << "the layout must not grow with the paper";
  EXPECT_EQ(colour(image, 2590, 200), "008000");
  EXPECT_EQ(colour(image, 508, 350), "0000ff");
  EXPECT_EQ(colour(image, 516, 350), "ffffff") << "50vw";
}

TEST_F(PrintTest, PagesOfPaperKeepTheLayoutWidthAndTheirMargins) {
  openMarkup(
      u"<!DOCTYPE html><style>@page{margin:9cm;size:A3}body{margin:0}"
      ".half{width:512px;height:100px;background:rgb(0,0,255)}"
      "@media (max-width:1000px){.half{background:red}}</style>"
      "<div class=half></div><div style='height:3000px;background:rgb(0,128,0)'></div>"_s);
  const QString path = printPaginated(a4);
  expectSound(path);
  // 495 points for 1024 pixels: 742 points hold 1534 of 3100 rows.
  EXPECT_EQ(printed->pages, 3);
  EXPECT_EQ(pagesOf(path), 3);
  EXPECT_NEAR(printed->pageSize.width(), 595, 1);
  EXPECT_NEAR(printed->pageSize.height(), 842, 1);
  const QImage image = pdfPixels(path);
  EXPECT_EQ(colour(image, 45, 300), "ffffff");
  EXPECT_EQ(colour(image, 55, 300), "008000");
  EXPECT_EQ(colour(image, 540, 300), "008000");
  EXPECT_EQ(colour(image, 550, 300), "ffffff");
  EXPECT_EQ(colour(image, 290, 60), "0000ff");
  EXPECT_EQ(colour(image, 305, 60), "ffffff") << "half of 1024 pixels";
  EXPECT_EQ(colour(image, 300, 36), "ffffff");
  EXPECT_EQ(colour(image, 100, 44), "0000ff");
  EXPECT_EQ(colour(image, 300, 775), "008000");
  EXPECT_EQ(colour(image, 300, 790), "ffffff");
}

TEST_F(PrintTest, BarsAreNotRepeatedOnPaper) {
  openFixture(u"bars.html"_s);
  const QString path = printPaginated(a4);
  int green = 0;
  int blue = 0;
  for (int number = 1; number <= printed->pages; ++number) {
    const QImage image = pdfPixels(path, number);
    for (int y = 0; y < image.height(); ++y) {
      green += colour(image, 300, y) == "008000";
      blue += colour(image, 300, y) == "0000ff";
    }
  }
  const double scale = 495.0 / 1024;
  EXPECT_NEAR(green, 50 * scale, 2);
  EXPECT_NEAR(blue, 60 * scale, 2);
}

TEST_F(PrintTest, OnePageGivesTheSameInAnyOrderOfConversions) {
  openFixture(u"hero.html"_s);
  const QImage first = picture();
  printTall();
  printPaginated(a4);
  const int pages = printed->pages;
  textLayer();
  EXPECT_EQ(picture(), first);
  expectOnePage(printTall(), {1024, 1579});
  printPaginated(a4);
  EXPECT_EQ(printed->pages, pages);
  EXPECT_EQ(picture(), first);
}

TEST_F(PrintTest, AFileThatCannotBeWrittenIsAnErrorAndLeavesNothing) {
  openMarkup(u"<!DOCTYPE html><p>text"_s);
  const QString missing = folder.filePath(u"missing/file.pdf"_s);
  const auto result = await<Result<rendering::PrintedDocument>>(
      [&](auto done) { rendering::printTall(page, {}, missing, done); });
  ASSERT_FALSE(result);
  EXPECT_TRUE(result.error().localizedDescription.contains(missing));
  const auto narrow = await<Result<rendering::PrintedDocument>>([&](auto done) {
    rendering::printPaginated(page, {{100, 100}, {50, 50, 50, 50}}, folder.filePath(u"x.pdf"_s),
                              done);
  });
  ASSERT_FALSE(narrow);
  EXPECT_TRUE(narrow.error().localizedDescription.contains(u"margins"_s));
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
  expectOnePage(printTall(), size());
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"tall.pdf"_s});
}

}  // namespace
