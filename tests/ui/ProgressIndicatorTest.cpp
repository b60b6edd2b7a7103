#include <gtest/gtest.h>

#include <QtMath>
#include <numbers>

#include "support/Wait.h"
#include "ui/controls/CVProgressIndicator.h"

namespace {

constexpr int side = 60;
constexpr double twelveOClock = 3 * std::numbers::pi / 2;

QImage painted(CVProgressIndicator& indicator) {
  QImage image(indicator.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::black);
  indicator.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
  return image;
}

/// The colour in the middle of the band, at an hour of the clock.
QColor atHour(const QImage& image, double hour, double radius = side / 2.0 - 7) {
  const double angle = twelveOClock + hour / 12 * 2 * std::numbers::pi;
  return image.pixelColor(qRound(side / 2.0 + radius * std::cos(angle) - 0.5),
                          qRound(side / 2.0 + radius * std::sin(angle) - 0.5));
}

std::unique_ptr<CVProgressIndicator> made(double progress) {
  auto indicator = std::make_unique<CVProgressIndicator>();
  indicator->resize(side, side);
  indicator->setForegroundColor(Qt::red);
  indicator->setProgress(progress);
  return indicator;
}

bool isRed(const QColor& colour) {
  return colour.red() > 200 && colour.green() < 60;
}

}  // namespace

TEST(ProgressIndicator, fillsClockwiseFromTwelve) {
  struct {
    double progress;
    std::vector<double> red;
    std::vector<double> grey;
  } const cases[] = {
      {0.0, {}, {1, 4, 7, 11}},
      {0.25, {0.5, 1.5, 2.5}, {3.5, 6, 9, 11.5}},
      {0.75, {0.5, 4, 8.5}, {9.5, 11}},
      {1.0, {0.5, 3, 6, 9, 11.5}, {}},
  };
  for (const auto& [progress, red, grey] : cases) {
    const auto indicator = made(progress);
    const QImage image = painted(*indicator);
    for (double hour : red)
      EXPECT_TRUE(isRed(atHour(image, hour))) << progress << " at " << hour;
    for (double hour : grey) {
      const QColor colour = atHour(image, hour);
      EXPECT_FALSE(isRed(colour)) << progress << " at " << hour;
      EXPECT_GT(colour.red(), 90) << "the track shows at " << hour;
    }
  }
}

TEST(ProgressIndicator, drawsABandOfSixPointsOnADisc) {
  const auto indicator = made(1.0);
  const QImage image = painted(*indicator);
  const double middle = side / 2.0 - 7;
  EXPECT_TRUE(isRed(atHour(image, 3, middle - 2)));
  EXPECT_TRUE(isRed(atHour(image, 3, middle + 2)));
  EXPECT_FALSE(isRed(atHour(image, 3, middle - 4)));
  EXPECT_FALSE(isRed(atHour(image, 3, middle + 4)));
  EXPECT_NEAR(image.pixelColor(side / 2, side / 2).red(), 111 / 2, 2);
  EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::black));
}

TEST(ProgressIndicator, turnsFromThreeOClockTheFirstTimeAndFromTwelveLater) {
  const auto indicator = made(0);
  EXPECT_EQ(indicator->currentIndeterminateAngle(), 0);
  indicator->setIndeterminate(true);
  indicator->setIndeterminate(true);
  indicator->updateIndeterminate();
  EXPECT_NEAR(indicator->currentIndeterminateAngle(), 0.04, 1e-9);
  indicator->setIndeterminate(false);
  EXPECT_NEAR(indicator->currentIndeterminateAngle(), twelveOClock, 1e-9);
  indicator->setIndeterminate(true);
  EXPECT_NEAR(indicator->currentIndeterminateAngle(), twelveOClock, 1e-9);
  EXPECT_TRUE(support::waitFor(
      [&] { return qAbs(indicator->currentIndeterminateAngle() - twelveOClock) > 0.01; }));
}

TEST(ProgressIndicator, theTurningRingFadesTowardsItsTail) {
  const auto indicator = made(0);
  indicator->setIndeterminate(true);
  for (int step = 0; step < 118; ++step)
    indicator->updateIndeterminate();  // head near twelve
  const QImage image = painted(*indicator);
  const int head = atHour(image, 11.5).red();
  const int middle = atHour(image, 7.5).red();
  const int tail = atHour(image, 3.5).red();
  EXPECT_GT(head, middle);
  EXPECT_GT(middle, tail);
  EXPECT_FALSE(isRed(atHour(image, 11.5))) << "this ring is white whatever the colour set";
}
