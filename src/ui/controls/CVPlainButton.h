#pragma once

#include <QColor>
#include <QPushButton>
#include <functional>
#include <optional>

/// A flat button that paints one of two colours and nothing else: its label and icon are views laid
/// over it. The focus of the keyboard, which has no colour of its own here, is drawn as a frame.
class CVPlainButton : public QPushButton {
  Q_OBJECT

 public:
  using HoverBlock = std::function<void(bool hovering)>;

  explicit CVPlainButton(QWidget* parent = nullptr);

  /// None: nothing is painted.
  void setBackgroundColor(std::optional<QColor> color);
  /// None: the blue 98, 163, 245.
  void setHoverColor(std::optional<QColor> color);
  void setHoverBlock(HoverBlock block) { hoverBlock_ = std::move(block); }

 protected:
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void setHovering(bool hovering);

  std::optional<QColor> backgroundColor_;
  std::optional<QColor> hoverColor_;
  HoverBlock hoverBlock_;
  bool hovering_ = false;
  bool focusFromKeyboard_ = false;
};
