#pragma once

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QRectF>
#include <QSizeF>

#include "platform/base/Font.h"
#include "platform/pdf/PageCanvas.h"

namespace pdf {

/// Sets text for the PDF device, with one layout for measuring and for drawing. Points outside,
/// device dots inside.
class TextSetter {
 public:
  explicit TextSetter(QPaintDevice& device);

  QSizeF sizeOfText(const QString& text, const Font& font) const;
  void drawText(QPainter& painter, const QString& text, const Font& font, const QRectF& rectangle,
                LineBreaking breaking) const;

 private:
  QPaintDevice& device_;
  double dotsPerPoint_;
};

/// Pages of text in memory, drawn one after the other.
class CanvasWriter : public PageCanvas {
 public:
  CanvasWriter();
  ~CanvasWriter() override;

  void beginPage(QSizeF size);

  /// Whether anything was drawn since `beginPage`.
  bool pageIsDrawn() const { return pageIsDrawn_; }

  /// Ends the last page and returns the PDF.
  QByteArray finish();

  QSizeF sizeOfText(const QString& text, const Font& font) const override;
  void drawText(const QString& text, const Font& font, const QRectF& rectangle,
                LineBreaking breaking) override;

 private:
  QBuffer buffer_;
  QPdfWriter writer_;
  TextSetter setter_;
  QPainter painter_;
  bool pageIsDrawn_ = false;
};

}  // namespace pdf
