#pragma once

#include <QLineEdit>

namespace ui {

/// A title that can be edited in place. While nobody edits it, it ends in an ellipsis where it does
/// not fit, and its whole text is its tooltip.
class TitleField : public QLineEdit {
  Q_OBJECT

 public:
  explicit TitleField(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  void paintElided();

  QString textBeforeEditing_;
};

}  // namespace ui
