#pragma once

#include <QProxyStyle>
#include <QRectF>

class QLineEdit;

/// Draws the text of a field without any inset: the drawing rectangle is the whole of the bounds.
/// Shared by all fields that use it.
class CVPaddedTextFieldCell : public QProxyStyle {
  Q_OBJECT

 public:
  static QRect drawingRectForBounds(const QRect& bounds) { return bounds; }
  static QRect titleRectForBounds(const QRect& bounds) { return bounds; }

  /// Takes frame, ground and insets from the field.
  static void applyTo(QLineEdit& field);

  QRect subElementRect(SubElement element, const QStyleOption* option,
                       const QWidget* widget) const override;
};
