#pragma once

#include <QLabel>

namespace ui {

/// A line of text that is shortened where it does not fit; the whole is its tooltip and its
/// accessible name.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  void setFullText(const QString& text, Qt::TextElideMode mode = Qt::ElideMiddle);
  const QString& fullText() const { return fullText_; }

  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString fullText_;
  Qt::TextElideMode mode_ = Qt::ElideMiddle;
};

}  // namespace ui
