#pragma once

#include <QWidget>

/// Fills its part of the window with white.
class CVWhiteView : public QWidget {
  Q_OBJECT

 public:
  explicit CVWhiteView(QWidget* parent = nullptr);

  /// 0 (not seen) to 1; 1 at first.
  double alphaValue() const { return alpha_; }
  void setAlphaValue(double alpha);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double alpha_ = 1;
};
