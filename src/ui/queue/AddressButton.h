#pragma once

#include <QAbstractButton>

namespace ui {

/// An address that can be pressed. A long one is shortened in its middle; the whole is its tooltip.
class AddressButton : public QAbstractButton {
  Q_OBJECT

 public:
  explicit AddressButton(QWidget* parent = nullptr);

  void setAddress(const QString& address);

  /// Another colour for the whole text; an invalid colour gives the usual one back.
  void setHighlightColor(const QColor& color);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QColor highlight_;
};

}  // namespace ui
