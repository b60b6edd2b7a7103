#pragma once

#include <QColor>
#include <QIconEngine>
#include <QSizeF>
#include <QString>
#include <optional>

namespace ui {

/// One picture: a vector source and how it is drawn.
struct VectorPicture {
  /// Below ":/corvalis/icons/".
  QString source;
  /// Points.
  QSizeF size;
  /// Glyphs are drawn in black and shown in one colour; pictures keep their own.
  std::optional<QColor> colour;
  /// Downwards, points; with it a picture moves within its frame.
  double offset = 0;
  double opacity = 1;

  /// Device pixels of exactly that size.
  QPixmap render(const QSize& devicePixels) const;
};

/// Draws a vector picture at whatever size and density a control asks for.
class VectorIconEngine : public QIconEngine {
 public:
  explicit VectorIconEngine(VectorPicture picture);

  void paint(QPainter* painter, const QRect& rectangle, QIcon::Mode mode,
             QIcon::State state) override;
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
  QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
  QIconEngine* clone() const override;

 private:
  VectorPicture picture_;
};

}  // namespace ui
