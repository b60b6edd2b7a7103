#pragma once

#include <QWidget>

namespace ui {

/// The line between two rows where what is dragged will go.
class DropLine : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace ui
