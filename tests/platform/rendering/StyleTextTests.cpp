#include "platform/rendering/StyleText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace rendering;

namespace {

const QSizeF screen(1000, 500);

std::string settled(const QString& css) {
  return settledStyleSheet(css, {screen, ViewportChange::Height, {}})
      .value_or(u"unchanged"_s)
      .toStdString();
}

TEST(StyleTextTest, LengthsBecomePixels) {
  EXPECT_EQ(settled(u"a{height:100vh}"_s), "a{height:500px}");
  EXPECT_EQ(settled(u"a{inset:-.5vmin +2e1vmax 1.5svh 50DVW}"_s),
            "a{inset:-2.5px 200px 7.5px 500px}");
  EXPECT_EQ(settled(u"a{margin:calc(100lvh - 10px*2)}b{top:1vb;left:1vi"_s),
            "a{margin:calc(500px - 10px*2)}b{top:5px;left:10px");
  EXPECT_EQ(settled(u"a{color:red;&:hover{height:10vh}}@layer x{b{--full:100vh}}"_s),
            "a{color:red;&:hover{height:50px}}@layer x{b{--full:500px}}");
  EXPECT_EQ(settled(u"a{background:url(data:image/png;base64,AA==) 0 10vh;top:1vh}"_s),
            "a{background:url(data:image/png;base64,AA==) 0 50px;top:5px}");
}

TEST(StyleTextTest, NamesStringsAndCommentsStay) {
  for (const QString& css :
       {u".h-100vh:hover{color:red}"_s, u".w-\\[50vh\\]:not(.x){color:red}"_s,
        u"a::after{content:\"100vh;}\";color:red}"_s, u"/* 100vh { height: 1vh } */a{color:red}"_s,
        u"a{background:url(img-50vh.png)}"_s, u"a{width:var(--h-100vh)}"_s, u"a{color:#1vh}"_s,
        u"@media (min-width:10px){a{color:red}}"_s, u"a{height:100px}"_s, u""_s,
        u"}}{{;\"100vh"_s}) {
    EXPECT_EQ(settled(css), "unchanged") << css.toStdString();
  }
}

TEST(StyleTextTest, MediaFeaturesBecomeTheirAnswerOnTheScreen) {
  const QString css =
      u"@import url(x.css) (orientation:portrait);@media screen and (min-height: 40em) and "
      u"(min-width:9px){a{top:0}}"
      "@media (max-aspect-ratio: 1/1){b{top:0}}"_s;
  EXPECT_EQ(viewportConditions(css, ViewportChange::Height),
            (QStringList{u"(orientation:portrait)"_s, u"(min-height: 40em)"_s,
                         u"(max-aspect-ratio: 1/1)"_s}));
  EXPECT_TRUE(viewportConditions(css, ViewportChange::Both).contains(u"(min-width:9px)"_s));
  const ScreenViewport viewport{
      screen,
      ViewportChange::Height,
      {{u"(orientation:portrait)"_s, false}, {u"(min-height: 40em)"_s, true}}};
  EXPECT_EQ(settledStyleSheet(css, viewport).value_or(QString()),
            u"@import url(x.css) (max-width: 0px);@media screen and (min-width: 0px) and "
            u"(min-width:9px){a{top:0}}"
            "@media (max-aspect-ratio: 1/1){b{top:0}}"_s);
  EXPECT_EQ(settledMedia(u"screen and (min-height: 40em)"_s, viewport),
            u"screen and (min-width: 0px)"_s);
  EXPECT_EQ(settledMedia(u"print"_s, viewport), std::nullopt);
}

TEST(StyleTextTest, PageRulesGo) {
  EXPECT_EQ(
      settled(
          u"/*x*/ @page :first { margin: 1cm; @top-left { content: 'x' } } @pages{} a{top:1vh}"_s),
      "@media not all{ margin: 1cm; @top-left { content: 'x' } } @pages{} a{top:5px}");
}

TEST(StyleTextTest, LargeSheetsAreReadToTheEnd) {
  QString css;
  for (int rule = 0; rule < 20000; ++rule)
    css += u".r%1{color:rgb(1,2,3);background:url(\"x;}\")}"_s.arg(rule);
  const QString result =
      settledStyleSheet(css + u"a{height:1vh}"_s, {screen, ViewportChange::Height, {}})
          .value_or(QString());
  EXPECT_TRUE(result.endsWith(u"a{height:5px}"_s));
  EXPECT_EQ(result.size(), css.size() + 13);
}

}  // namespace
