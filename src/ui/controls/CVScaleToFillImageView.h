#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>

/// Shows a picture so that it fills the view: the picture keeps its shape, and what sticks out is
/// cut off on both sides alike.
class CVScaleToFillImageView : public QWidget {
  Q_OBJECT

 public:
  enum class ImageScaling { ProportionallyDown, AxesIndependently, None, ProportionallyUpOrDown };

  explicit CVScaleToFillImageView(QWidget* parent = nullptr);

  /// The cropped picture fills the bounds whatever is asked for.
  void setImageScaling(ImageScaling scaling);
  ImageScaling imageScaling() const { return ImageScaling::AxesIndependently; }

  /// A null image shows nothing.
  void setImage(const QImage& image);
  const QImage& image() const { return image_; }
  /// Points: the size that the view had when its picture was set.
  QSize wrapperSize() const { return wrapperSize_; }

  /// The middle part of a picture of that size that has the shape of the view.
  static QRectF sourceRectangle(const QSizeF& image, const QSizeF& view);

  /// Points; 0 at first.
  void setCornerRadius(double radius);
  /// A hairline around the picture, which would else melt into its ground; none at first.
  void setFrameColor(const QColor& color);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const QPixmap& scaledPart();

  QImage image_;
  QSize wrapperSize_;
  double cornerRadius_ = 0;
  QColor frameColor_;
  QPixmap scaled_;
};
