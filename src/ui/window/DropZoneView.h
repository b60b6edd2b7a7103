#pragma once

#include <QWidget>

namespace ui {

/// The ground of the drop zone: a dashed frame, which turns solid and tinted while something that
/// can be dropped is over it.
class DropZoneView : public QWidget {
  Q_OBJECT

 public:
  explicit DropZoneView(QWidget* parent = nullptr);

  void setDragHovering(bool hovering);
  bool isDragHovering() const { return hovering_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool hovering_ = false;
};

}  // namespace ui
