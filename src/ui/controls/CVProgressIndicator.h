#pragma once

#include <QColor>
#include <QWidget>
#include <memory>

class QPainterPath;
namespace dispatch {
class Timer;
}

/// A ring that fills clockwise from twelve o'clock, or turns while nobody knows how long it takes.
/// Angles are radians that grow clockwise; 3/2 pi is at twelve o'clock. A ring whose two angles are
/// equal is the whole ring, for the track as for a progress of 1.
class CVProgressIndicator : public QWidget {
  Q_OBJECT

 public:
  explicit CVProgressIndicator(QWidget* parent = nullptr);
  ~CVProgressIndicator() override;

  /// 0 to 1.
  double progress() const { return progress_; }
  void setProgress(double progress);
  QColor foregroundColor() const { return foregroundColor_; }
  void setForegroundColor(const QColor& color);

  /// The first turn of a view begins at three o'clock, every later one at twelve.
  bool indeterminate() const { return timer_ != nullptr; }
  void setIndeterminate(bool indeterminate);

  double currentIndeterminateAngle() const { return currentIndeterminateAngle_; }
  /// One step of the turn: 0.04 radians.
  void updateIndeterminate();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPainterPath arc(double fromAngle, double span) const;
  void drawDisc(QPainter& painter) const;
  void drawCircle(QPainter& painter, const QColor& color, double fromAngle, double toAngle) const;
  void drawFadingCircle(QPainter& painter, QColor color, double fromAngle, double toAngle) const;
  void drawOutline(QPainter& painter, const QColor& color, const QPainterPath& path) const;

  double progress_ = 0;
  QColor foregroundColor_;
  double currentIndeterminateAngle_ = 0;
  std::unique_ptr<dispatch::Timer> timer_;
};
