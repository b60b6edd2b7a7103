#pragma once

#include <QColor>
#include <QImage>
#include <QSizeF>
#include <memory>

namespace imaging {

/// A picture that never changes: pixels, and the size in points at which it is shown. The two are
/// independent: a picture of 2 device pixels per point has twice as many pixels as points each way.
/// Usable on every thread; shared as `std::shared_ptr<const Image>`, with the empty pointer for "no
/// picture".
class Image {
 public:
  /// As many points as pixels, divided by the pixels' own device pixel ratio.
  explicit Image(QImage pixels);
  Image(QImage pixels, QSizeF sizeInPoints);

  /// False when there are no pixels or no area to show them on.
  bool isValid() const;
  /// In points.
  QSizeF size() const { return size_; }
  const QImage& pixels() const { return pixels_; }

  /// A new picture of exactly `target` points with this one in its middle, as large as fits without
  /// changing its shape; what it does not cover is transparent. `pixelsPerPoint` is the density of
  /// the new picture's pixels. Empty when this picture is not valid or the target has no area.
  std::shared_ptr<const Image> imageByScalingProportionallyToSize(QSizeF target,
                                                                  double pixelsPerPoint = 1) const;

  /// One colour, one pixel per point.
  static std::shared_ptr<const Image> swatchWithColor(const QColor& color, QSizeF size);
  /// White, 400 x 300 points: stands in for a page that has no picture yet.
  static std::shared_ptr<const Image> swatchForThumbnail();

 private:
  QImage pixels_;
  QSizeF size_;
};

}  // namespace imaging
