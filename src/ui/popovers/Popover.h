#pragma once

#include <QWidget>

namespace ui {

/// A small surface that points at a control and goes away at the next click outside of it. Made on
/// the heap; it deletes itself when it has closed. Main thread.
class Popover : public QWidget {
  Q_OBJECT

 public:
  enum class Edge { Above, Below, Right };

  /// Takes the content over.
  Popover(QWidget* content, QWidget* window);

  /// Points at the middle of the anchor's edge; where the screen has no room there, at the opposite
  /// one.
  void showRelativeTo(const QWidget& anchor, Edge preferred);

  /// Where the tip of the arrow is, in the popover's own coordinates.
  /// What is seen of it, without arrow and shadow; within the window.
  QRect body() const;
  QPoint arrowTip() const { return tip_; }
  Edge edge() const { return edge_; }

 Q_SIGNALS:
  void closed();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QPainterPath outline() const;
  QPoint placeAt(const QRect& anchor, const QRect& screen);
  void shapeWindow();

  Edge edge_ = Edge::Above;
  QPoint tip_;
};

}  // namespace ui
