#include <gtest/gtest.h>

#include <QApplication>
#include <cmath>

#include "ui/look/Theme.h"

using ui::Theme;

namespace {

/// Relative luminance and contrast as WCAG 2.1 define them.
double luminance(const QColor& colour) {
  const auto linear = [](double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
  const double brighter = qMax(luminance(one), luminance(other));
  const double darker = qMin(luminance(one), luminance(other));
  return (brighter + 0.05) / (darker + 0.05);
}

}  // namespace

TEST(Theme, textAndIconsStandOutOnTheirGrounds) {
  for (const Theme* theme : {&Theme::light(), &Theme::dark()}) {
    for (const QColor& ground : {theme->window, theme->surface}) {
      for (const QColor& ink : {theme->text, theme->secondaryText, theme->failed, theme->done}) {
        EXPECT_GE(contrast(ink, ground), 4.5) << ink.name().toStdString();
      }
      EXPECT_GE(contrast(theme->accent, ground), 3.0);
    }
    EXPECT_GE(contrast(theme->text, theme->rowHover), 4.5);
    EXPECT_GE(contrast(theme->onAccent, theme->accent), 4.5);
  }
}

TEST(Theme, onlyDarkIsDark) {
  using namespace Qt::StringLiterals;
  EXPECT_EQ(&Theme::of(u"dark"_s), &Theme::dark());
  for (const std::optional<QString>& other :
       {std::optional<QString>(), std::optional(u"Dark"_s), std::optional(u"light"_s)}) {
    EXPECT_EQ(&Theme::of(other), &Theme::light());
  }
}

TEST(Theme, applyingItReachesEveryWidget) {
  ui::applyTheme(Theme::dark());
  EXPECT_EQ(QApplication::palette().color(QPalette::Window), Theme::dark().window);
  EXPECT_EQ(&Theme::current(), &Theme::dark());
  ui::applyTheme(Theme::light());
  EXPECT_EQ(QApplication::palette().color(QPalette::Window), Theme::light().window);
}
