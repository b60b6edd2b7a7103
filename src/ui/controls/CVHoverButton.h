#pragma once

#include <QIcon>
#include <QToolButton>

/// A button that shows another image while the pointer is over it. Enter presses it as the space
/// key does.
class CVHoverButton : public QToolButton {
  Q_OBJECT

 public:
  explicit CVHoverButton(QWidget* parent = nullptr);

  QIcon hoverImage() const { return hoverImage_; }
  void setHoverImage(const QIcon& image) { hoverImage_ = image; }
  QIcon defaultImage() const { return defaultImage_; }
  void setDefaultImage(const QIcon& image) { defaultImage_ = image; }

 protected:
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QIcon hoverImage_;
  QIcon defaultImage_;
};
