#include <gtest/gtest.h>

#include "platform/imaging/Image.h"

namespace imaging {
namespace {

struct Placement {
  QSizeF source;
  QSizeF target;
  /// Opaque and transparent points of the result.
  std::vector<QPoint> covered;
  std::vector<QPoint> free;
};

TEST(Image, scalesWithoutChangingItsShapeAndLeavesTheMarginsTransparent) {
  const Placement placements[] = {
      // 122.67 x 92 at 2.67, 0.
      {{400, 300}, {128, 92}, {{3, 0}, {64, 46}, {124, 91}}, {{0, 0}, {1, 46}, {126, 91}}},
      {{100, 400}, {80, 80}, {{31, 0}, {48, 79}}, {{29, 40}, {51, 40}}},
      {{400, 100}, {80, 80}, {{0, 31}, {79, 48}}, {{40, 28}, {40, 51}}},
      {{10, 10}, {64, 64}, {{0, 0}, {63, 63}}, {}},
      {{128, 92}, {128, 92}, {{0, 0}, {127, 91}}, {}},
  };
  for (const Placement& placement : placements) {
    const auto source = Image::swatchWithColor(Qt::red, placement.source);
    const auto scaled = source->imageByScalingProportionallyToSize(placement.target);
    ASSERT_TRUE(scaled);
    EXPECT_EQ(scaled->size(), placement.target);
    EXPECT_EQ(scaled->pixels().size(), placement.target.toSize());
    for (const QPoint& point : placement.covered) {
      EXPECT_EQ(scaled->pixels().pixel(point), qRgb(255, 0, 0)) << point.x() << ',' << point.y();
    }
    for (const QPoint& point : placement.free) {
      EXPECT_EQ(qAlpha(scaled->pixels().pixel(point)), 0) << point.x() << ',' << point.y();
    }
  }
}

TEST(Image, averagesFineDetailInsteadOfDroppingIt) {
  QImage stripes(800, 800, QImage::Format_RGB32);
  for (int y = 0; y < 800; ++y) {
    for (int x = 0; x < 800; ++x)
      stripes.setPixel(x, y, x % 4 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
  }
  const auto scaled = Image(stripes).imageByScalingProportionallyToSize({50, 50});
  ASSERT_TRUE(scaled);
  for (int x = 2; x < 48; ++x)
    EXPECT_NEAR(qRed(scaled->pixels().pixel(x, 25)), 191, 12) << x;
}

TEST(Image, keepsMorePixelsThanPointsForDenseScreens) {
  const Image source(QImage(400, 300, QImage::Format_RGB32), QSizeF(200, 150));
  const auto scaled = source.imageByScalingProportionallyToSize({100, 75}, 2);
  ASSERT_TRUE(scaled);
  EXPECT_EQ(scaled->size(), QSizeF(100, 75));
  EXPECT_EQ(scaled->pixels().size(), QSize(200, 150));
}

TEST(Image, nothingComesOfAnInvalidPictureOrTarget) {
  EXPECT_FALSE(Image(QImage()).isValid());
  EXPECT_FALSE(Image(QImage()).imageByScalingProportionallyToSize({10, 10}));
  const auto swatch = Image::swatchForThumbnail();
  EXPECT_FALSE(swatch->imageByScalingProportionallyToSize({0, 10}));
  EXPECT_FALSE(swatch->imageByScalingProportionallyToSize({qQNaN(), 10}));
  EXPECT_FALSE(Image::swatchWithColor(Qt::red, {0, 5})->isValid());
}

TEST(Image, standsInForAPageAsAWhiteSwatch) {
  const auto swatch = Image::swatchForThumbnail();
  EXPECT_EQ(swatch->size(), QSizeF(400, 300));
  EXPECT_EQ(swatch->pixels().pixel(0, 0), qRgb(255, 255, 255));
  EXPECT_EQ(swatch->pixels().pixel(399, 299), qRgb(255, 255, 255));
}

}  // namespace
}  // namespace imaging
