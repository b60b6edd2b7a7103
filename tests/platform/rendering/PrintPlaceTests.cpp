#include <QRegularExpression>
#include <map>

#include "RenderingTest.h"
#include "platform/pdf/DocumentFacts.h"

using namespace Qt::StringLiterals;

namespace {

/// A place on a page, in units of its user space, y downwards.
struct Place {
  int page = 0;
  QRectF box;
};

/// Where things of a printed file lie, as other programs read it.
class Places {
 public:
  explicit Places(const QString& path)
      : path_(path),
        objects_(outputOf(u"qpdf"_s, {u"--qdf"_s, u"--object-streams=disable"_s, path, u"-"_s})),
        words_(outputOf(u"pdftotext"_s, {u"-bbox"_s, path, u"-"_s})),
        destinations_(outputOf(u"pdfinfo"_s, {u"-dests"_s, path})) {}

  Place word(const QString& text) const {
    const QRegularExpression part(
        u"<page|xMin=\"([0-9.-]+)\" yMin=\"([0-9.-]+)\" xMax=\"([0-9.-]+)\" yMax=\"([0-9.-]+)\">([^<]*)"_s);
    Place place;
    for (auto matches = part.globalMatch(words_); matches.hasNext();) {
      const auto match = matches.next();
      if (match.captured(0) == u"<page"_s) ++place.page;
      if (match.captured(5) != text) continue;
      const auto edge = [&match](int index) { return match.captured(index).toDouble(); };
      place.box = QRectF(QPointF(edge(1), edge(2)), QPointF(edge(3), edge(4)));
      return place;
    }
    ADD_FAILURE() << "no word " << text.toStdString();
    return {};
  }

  /// Where a named destination leads: upper left corner. Whole units, as the program prints them.
  Place destination(const QString& name) const {
    const QRegularExpression line(
        u"(\\d+) \\[ XYZ +(-?\\d+) +(-?\\d+) +\\S+ *\\] \"%1\""_s.arg(name));
    const auto match = line.match(destinations_);
    if (!match.hasMatch()) ADD_FAILURE() << "no destination " << name.toStdString();
    const QPointF corner(match.captured(2).toDouble(), match.captured(3).toDouble());
    return {match.captured(1).toInt(), QRectF(shown(corner), QSizeF())};
  }

  /// Where the outline's items lead, in their order of the file: upper left corners.
  std::map<QString, QPointF> outline() const {
    static const QRegularExpression item(
        u"/Dest \\[\\s+\\d+ 0 R\\s+/XYZ\\s+([0-9.-]+)\\s+([0-9.-]+)[^>]*?/Title \\((\\w+)\\)"_s);
    std::map<QString, QPointF> found;
    for (auto matches = item.globalMatch(objects_); matches.hasNext();) {
      const auto match = matches.next();
      found[match.captured(3)] =
          shown(QPointF(match.captured(1).toDouble(), match.captured(2).toDouble()));
    }
    return found;
  }

  /// The areas of the links, y downwards.
  QList<QRectF> links() const {
    static const QRegularExpression area(
        u"/Rect \\[\\s+([0-9.-]+)\\s+([0-9.-]+)\\s+([0-9.-]+)\\s+([0-9.-]+)\\s+\\]"_s);
    QList<QRectF> found;
    for (auto matches = area.globalMatch(objects_); matches.hasNext();) {
      const auto match = matches.next();
      const auto edge = [&match](int index) { return match.captured(index).toDouble(); };
      found += QRectF(shown({edge(1), edge(4)}), shown({edge(3), edge(2)}));
    }
    return found;
  }

 private:
  /// From user space, whose origin need not be the page's corner.
  QPointF shown(QPointF point) const {
    static const QRegularExpression box(
        u"/MediaBox \\[\\s+([0-9.-]+)\\s+[0-9.-]+\\s+[0-9.-]+\\s+([0-9.-]+)"_s);
    const auto match = box.match(objects_);
    return {point.x() - match.captured(1).toDouble(), match.captured(2).toDouble() - point.y()};
  }

  QString path_;
  QString objects_;
  QString words_;
  QString destinations_;
};

class PrintPlaceTest : public RenderingTest {
 protected:
  void openPlaces(double stretch, double width = 1024) {
    web::PageConfiguration configuration;
    configuration.layoutWidth = static_cast<int>(width);
    openFixture(u"places.html"_s, configuration);
    evaluate(u"document.getElementById('stretch').style.height = '%1px'"_s.arg(stretch));
  }

  /// Links lie over their words, and everything that leads somewhere leads to its word. `pixel` is
  /// the size of a CSS pixel in the page's user space.
  static void expectAllInPlace(const QString& path, double pixel) {
    const Places places(path);
    for (const auto& [name, indent] :
         std::map<QString, double>{{u"upper"_s, 0}, {u"middle"_s, 100 * pixel}, {u"lower"_s, 0}}) {
      const Place target = places.destination(name);
      const Place word = places.word(name == u"upper"_s ? u"Upper"_s : name);
      EXPECT_EQ(target.page, word.page) << name.toStdString();
      EXPECT_NEAR(target.box.x(), word.box.x() - indent, 1 + pixel) << name.toStdString();
      EXPECT_NEAR(target.box.y(), word.box.y(), 1 + 3 * pixel) << name.toStdString();
    }
    for (const auto& [title, corner] : places.outline())
      EXPECT_NEAR(corner.y(), places.word(title).box.y(), 1 + 5 * pixel) << title.toStdString();
    EXPECT_EQ(places.outline().size(), 2u);
    const QList<QRectF> links = places.links();
    ASSERT_EQ(links.size(), 4);
    for (const char* text : {"inward", "outward", "downward", "lower"}) {
      const QRectF word = places.word(QLatin1StringView(text)).box;
      const bool covered = std::any_of(links.begin(), links.end(), [&](const QRectF& link) {
        return std::abs(link.left() - word.left()) < pixel &&
               std::abs(link.right() - word.right()) < pixel &&
               std::abs(link.center().y() - word.center().y()) < 2 * pixel;
      });
      EXPECT_TRUE(covered) << text;
    }
  }
};

TEST_F(PrintPlaceTest, TallPagesAreShownByAllReadersWithEverythingAtItsPlace) {
  for (const double stretch : {1000.0, 14000.0, 40000.0, 90000.0, 250000.0}) {
    openPlaces(stretch);
    const QSizeF document = size();
    const QString path = printTall();
    const auto facts = pdf::documentFacts(path);
    ASSERT_TRUE(facts);
    ASSERT_EQ(facts->pageCount(), 1) << stretch;
    EXPECT_NEAR(facts->pageSizes[0].width(), document.width(), 0.01) << stretch;
    EXPECT_NEAR(facts->pageSizes[0].height(), document.height(), 0.1) << stretch;
    EXPECT_EQ(printed->pageSize, document) << stretch;
    const double unit = userUnit(path);
    EXPECT_LE(document.height() / unit, 14400.001) << stretch;
    EXPECT_EQ(unit > 1, document.height() > 14400) << stretch;
    expectAllInPlace(path, 1 / unit);
    const QRectF right = Places(path).word(u"rightmost"_s).box;
    EXPECT_NEAR(right.right() * unit, 1024, 1) << stretch;
    EXPECT_NEAR(right.top() * unit, 20, 3) << stretch;
    const QImage ground = pdfPixels(path, 1, {0, 40, 1024, 60});
    EXPECT_EQ(colour(ground, 500, 30), "ff0000") << stretch;
    EXPECT_EQ(colour(ground, 524, 30), "0000ff") << stretch;
    EXPECT_EQ(colour(ground, 1022, 30), "0000ff") << stretch << ": an unpainted edge";
    const QString version = outputOf(u"pdfinfo"_s, {path});
    EXPECT_EQ(version.contains(u"PDF version:     1.6"_s), unit > 1) << version.toStdString();
  }
}

TEST_F(PrintPlaceTest, PagesUpToTheLimitArePrintedAndHigherOnesNamed) {
  openPlaces(1'298'000);
  expectAllInPlace(printTall(), 14400 / size().height());
  EXPECT_EQ(printed->pageSize, size());
  evaluate(u"document.getElementById('stretch').style.height = '1300000px'"_s);
  const auto result = await<Result<rendering::PrintedDocument>>(
      [&](auto done) { rendering::printTall(page, {}, folder.filePath(u"higher.pdf"_s), done); });
  ASSERT_FALSE(result);
  for (const char* part : {"1,300,000", "1,301,180", "PNG"})
    EXPECT_TRUE(result.error().localizedDescription.contains(QLatin1StringView(part))) << part;
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"tall.pdf"_s});
}

TEST_F(PrintPlaceTest, LayoutsOfEveryWidthFillThePrintableWidth) {
  struct Case {
    const char* name;
    int layout;
    rendering::PageSetup setup;
  };
  const Case cases[] = {
      {"usual", 1024, {{595, 842}, {50, 40, 50, 60}}},
      {"a telephone's", 320, {{595, 842}, {50, 50, 50, 50}}},
      {"the narrowest that fit a scale of 2", 330, {{595, 842}, {50, 50, 50, 50}}},
      {"odd margins", 275, {{842, 595}, {37, 20, 11, 5}}},
      {"very narrow", 150, {{1191, 1684}, {0, 0, 0, 0}}},
      {"small paper", 2000, {{150, 210}, {10, 10, 10, 10}}},
      {"paper of parts of a point", 1024, {{419.53, 595.28}, {28.35, 28.35, 28.35, 28.35}}}};
  for (const auto& [name, layout, setup] : cases) {
    SCOPED_TRACE(name);
    openPlaces(1000, layout);
    const QString path = printPaginated(setup);
    const auto facts = pdf::documentFacts(path);
    ASSERT_TRUE(facts);
    EXPECT_NEAR(facts->pageSizes[0].width(), setup.paper.width(), 0.001);
    EXPECT_NEAR(facts->pageSizes[0].height(), setup.paper.height(), 0.001);
    EXPECT_EQ(userUnit(path), 1) << "printers do not know it";
    const double printable = setup.paper.width() - setup.margins.left() - setup.margins.right();
    const double pixel = printable / layout;
    EXPECT_NEAR(facts->pageCount(),
                std::ceil(2160 * pixel /
                          (setup.paper.height() - setup.margins.top() - setup.margins.bottom())),
                1);
    expectAllInPlace(path, pixel);
    const Places places(path);
    const QRectF right = places.word(u"rightmost"_s).box, left = places.word(u"Upper"_s).box;
    EXPECT_NEAR(left.left(), setup.margins.left(), 0.5);
    EXPECT_NEAR(right.right(), setup.paper.width() - setup.margins.right(), pixel);
    EXPECT_NEAR(left.top(), setup.margins.top(), 4 * pixel);
    const QImage image = pdfPixels(path);
    const int row = qRound(setup.margins.top() + 70 * pixel);
    const int middle = qRound(setup.margins.left() + printable / 2);
    EXPECT_EQ(colour(image, middle - 3, row), "ff0000");
    EXPECT_EQ(colour(image, middle + 3, row), "0000ff");
    EXPECT_EQ(colour(image, static_cast<int>(setup.paper.width() - setup.margins.right()) - 1, row),
              "0000ff");
    if (setup.margins.left() > 0) {
      EXPECT_EQ(colour(image, static_cast<int>(setup.margins.left()) - 2, row), "ffffff");
    }
  }
}

/// A page of this paper holds 1534 rows of a layout of 1024.
TEST_F(PrintPlaceTest, NoPageIsLeftForAFewRowsOrForNothing) {
  const QString colour = u"<div style='height:%1px;background:rgb(0,128,0)'></div>"_s;
  const QString line = u"<p style='margin:0;height:20px'>end</p>"_s;
  const QString nothing = u"<div style='height:60px'></div>"_s;
  struct Case {
    const char* name;
    QString markup;
    int pages;
  };
  const Case cases[] = {
      {"three rows more", colour.arg(1537), 1},
      {"three rows more than two pages", colour.arg(3071), 2},
      {"many rows more", colour.arg(1600), 2},
      {"blank rows", colour.arg(1490) + line + nothing, 1},
      {"white rows", u"<style>body{background:white}</style>"_s + colour.arg(1490) + line + nothing,
       1},
      {"blank pages", colour.arg(1490) + line + u"<div style='height:4000px'></div>"_s, 1},
      {"blank from the beginning", nothing, 1},
      {"blank before the last words",
       colour.arg(100) + u"<div style='height:4000px'></div>"_s + line, 3},
      {"a line that found no room", colour.arg(1532) + line, 2},
      {"blank rows that a link leads to",
       u"<a href='#place'>link</a>"_s + colour.arg(1470) + line +
           u"<div id=place style='margin-top:40px;height:60px'></div>"_s,
       2},
      {"coloured rows",
       u"<style>body{background:rgb(1,2,3)}</style>"_s + colour.arg(1490) + line + nothing, 2},
  };
  for (const auto& [name, markup, pages] : cases) {
    SCOPED_TRACE(name);
    openMarkup(u"<!DOCTYPE html><body style='margin:0;font:16px/20px serif'>"_s + markup);
    const QString path = printPaginated({{595, 842}, {50, 40, 50, 60}});
    EXPECT_EQ(printed->pages, pages);
    EXPECT_EQ(pdf::documentFacts(path)->pageCount(), pages);
    EXPECT_TRUE(outputOf(u"qpdf"_s, {u"--check"_s, path}).contains(u"No syntax"_s));
    EXPECT_EQ(outputOf(u"pdftotext"_s, {path, u"-"_s}).contains(u"end"_s), markup.contains(line));
    if (!markup.contains(colour.arg(1537))) continue;
    const QImage image = pdfPixels(path);
    EXPECT_EQ(::colour(image, 300, 779), "008000") << "the last row";
    EXPECT_EQ(::colour(image, 300, 784), "ffffff") << "within the margin";
    EXPECT_EQ(::colour(image, 537, 300), "008000") << "no more than a hundredth narrower";
  }
}

/// Pages break before the high box, so what follows stands lower than on the screen.
TEST_F(PrintPlaceTest, ABarAtTheEndCoversNoTextThatPageBreaksMovedDown) {
  const QString content =
      u"<!DOCTYPE html><body style='margin:0;font:20px/30px sans-serif'>"_s
      "<div style='height:1000px'>%2</div><div style='height:900px;break-inside:avoid'></div>"
      "<p style='margin:0 0 60px'>last</p>%1"
      "<p style='position:fixed;bottom:0;margin:0;width:100%;height:40px'>bar</p>";
  const QString placed = u"<p style='position:absolute;bottom:0;margin:0'>first</p>"_s;
  for (const QString& other : {QString(), placed}) {
    openMarkup(content.arg(other, other.isEmpty() ? u"first"_s : QString()));
    const Places places(printPaginated({{595, 842}, {50, 50, 50, 50}}));
    const Place last = places.word(u"last"_s), bar = places.word(u"bar"_s);
    EXPECT_EQ(last.page, 2);
    EXPECT_EQ(bar.page, 2);
    EXPECT_GT(bar.box.top(), last.box.bottom()) << other.toStdString();
    EXPECT_EQ(places.word(u"first"_s).page, 1);
  }
}

}  // namespace
