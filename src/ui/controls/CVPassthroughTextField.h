#pragma once

#include <QLabel>

/// A label that clicks go through, to the control that it lies on.
class CVPassthroughTextField : public QLabel {
  Q_OBJECT

 public:
  explicit CVPassthroughTextField(QWidget* parent = nullptr);
};
