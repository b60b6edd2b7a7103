#pragma once

#include <QRect>

class QLineEdit;

/// How a field without any inset draws its text: the drawing rectangle is the whole of the bounds.
class CVPaddedTextFieldCell {
 public:
  static QRect drawingRectForBounds(const QRect& bounds) { return bounds; }
  static QRect titleRectForBounds(const QRect& bounds) { return bounds; }

  /// Takes frame, ground and insets from the field.
  static void applyTo(QLineEdit& field);
};
