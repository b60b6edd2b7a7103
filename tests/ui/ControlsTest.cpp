#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPainter>
#include <QTest>

#include "ui/controls/CVHoverButton.h"
#include "ui/controls/CVPaddedTextFieldCell.h"
#include "ui/controls/CVPassthroughTextField.h"
#include "ui/controls/CVPlainButton.h"
#include "ui/controls/CVScaleToFillImageView.h"
#include "ui/controls/CVWhiteView.h"

using namespace Qt::StringLiterals;

namespace {

QImage painted(QWidget& widget) {
  QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
  return image;
}

void enter(QWidget& widget) {
  QEnterEvent event(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
  QCoreApplication::sendEvent(&widget, &event);
}

void leave(QWidget& widget) {
  QEvent event(QEvent::Leave);
  QCoreApplication::sendEvent(&widget, &event);
}

QIcon iconOf(Qt::GlobalColor colour) {
  QPixmap pixmap(16, 16);
  pixmap.fill(colour);
  return QIcon(pixmap);
}

/// Red, green and blue columns of equal width.
QImage stripes(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  QPainter painter(&image);
  painter.fillRect(0, 0, width / 3, height, Qt::red);
  painter.fillRect(width / 3, 0, width / 3, height, Qt::green);
  painter.fillRect(2 * (width / 3), 0, width, height, Qt::blue);
  return image;
}

}  // namespace

TEST(ScaleToFill, cropsTheMiddleOfWhicheverSideOverflows) {
  struct {
    QSizeF image;
    QSizeF view;
    QRectF expected;
  } const cases[] = {
      {{400, 300}, {128, 96}, {0, 0, 400, 300}},
      {{300, 100}, {100, 100}, {100, 0, 100, 100}},
      {{100, 300}, {100, 100}, {0, 100, 100, 100}},
      {{1000, 10}, {10, 1000}, {499.95, 0, 0.1, 10}},
  };
  for (const auto& [image, view, expected] : cases) {
    const QRectF part = CVScaleToFillImageView::sourceRectangle(image, view);
    EXPECT_NEAR(part.x(), expected.x(), 1e-9);
    EXPECT_NEAR(part.y(), expected.y(), 1e-9);
    EXPECT_NEAR(part.width(), expected.width(), 1e-9);
    EXPECT_NEAR(part.height(), expected.height(), 1e-9);
  }
}

TEST(ScaleToFill, fillsTheViewAndFollowsItsSize) {
  CVScaleToFillImageView view;
  view.resize(30, 30);
  view.setImageScaling(CVScaleToFillImageView::ImageScaling::None);
  EXPECT_EQ(view.imageScaling(), CVScaleToFillImageView::ImageScaling::AxesIndependently);
  view.setImage(stripes(90, 30));
  EXPECT_EQ(view.wrapperSize(), QSize(30, 30));
  QImage image = painted(view);
  for (const QPoint& point : {QPoint(0, 0), QPoint(29, 0), QPoint(15, 15), QPoint(29, 29)}) {
    EXPECT_EQ(image.pixelColor(point), QColor(Qt::green)) << point.x() << ' ' << point.y();
  }
  view.resize(90, 30);
  image = painted(view);
  EXPECT_EQ(view.wrapperSize(), QSize(30, 30));
  EXPECT_EQ(image.pixelColor(2, 15), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(87, 15), QColor(Qt::blue));
  view.setImage({});
  EXPECT_EQ(painted(view).pixelColor(45, 15).alpha(), 0);
}

TEST(WhiteView, isWhiteAsFarAsItsAlphaSays) {
  CVWhiteView view;
  view.resize(4, 4);
  EXPECT_EQ(painted(view).pixelColor(2, 2), QColor(Qt::white));
  view.setAlphaValue(0.5);
  EXPECT_NEAR(painted(view).pixelColor(2, 2).alphaF(), 0.5, 0.01);
}

TEST(HoverButton, swapsItsImageAndIsPressedByEnter) {
  CVHoverButton button;
  const QIcon idle = iconOf(Qt::red);
  const QIcon hover = iconOf(Qt::blue);
  button.setIcon(idle);
  button.setDefaultImage(idle);
  button.setHoverImage(hover);
  enter(button);
  EXPECT_EQ(button.icon().cacheKey(), hover.cacheKey());
  leave(button);
  EXPECT_EQ(button.icon().cacheKey(), idle.cacheKey());
  int pressed = 0;
  QObject::connect(&button, &QToolButton::clicked, [&pressed] { ++pressed; });
  QTest::keyClick(&button, Qt::Key_Return);
  QTest::keyClick(&button, Qt::Key_Space);
  EXPECT_EQ(pressed, 2);
}

TEST(PlainButton, paintsOnlyItsColourAndTellsOfHovering) {
  CVPlainButton button;
  button.resize(20, 20);
  button.setText(u"MMMM"_s);
  std::vector<bool> told;
  button.setHoverBlock([&told](bool hovering) { told.push_back(hovering); });
  EXPECT_EQ(painted(button).pixelColor(10, 10).alpha(), 0);
  enter(button);
  EXPECT_EQ(painted(button).pixelColor(10, 10), QColor(98, 163, 245));
  button.setHoverColor(QColor(Qt::red));
  EXPECT_EQ(painted(button).pixelColor(10, 10), QColor(Qt::red));
  leave(button);
  button.setBackgroundColor(QColor(Qt::green));
  EXPECT_EQ(painted(button).pixelColor(10, 10), QColor(Qt::green));
  EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

TEST(PassthroughTextField, letsAClickReachTheButtonBeneath) {
  QWidget window;
  window.resize(100, 40);
  CVPlainButton button(&window);
  button.resize(100, 40);
  CVPassthroughTextField label(&window);
  label.resize(100, 40);
  EXPECT_EQ(window.childAt(50, 20), &button);
}

TEST(PaddedTextFieldCell, drawsTextWithoutInset) {
  const auto firstInkedColumn = [](QLineEdit& field) {
    field.resize(100, 30);
    field.setText(u"\u2588\u2588"_s);  // full blocks: ink from the first column on
    const QImage image = painted(field);
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, 15) == field.palette().color(QPalette::Text)) return x;
    }
    return image.width();
  };
  QLineEdit usual;
  QLineEdit padded;
  CVPaddedTextFieldCell::applyTo(padded);
  EXPECT_LE(firstInkedColumn(padded), 1);
  EXPECT_GE(firstInkedColumn(usual), 3);
}
