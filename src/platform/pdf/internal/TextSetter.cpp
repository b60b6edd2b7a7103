#include "platform/pdf/internal/TextSetter.h"

#include <QFont>
#include <QPageSize>
#include <QTextLayout>
#include <cmath>

#include "platform/fonts/FontName.h"

namespace pdf {
namespace {

/// Fine enough that rounding to dots cannot be seen in a measure.
constexpr int dotsPerInch = 1200;
constexpr double widestLine = 1e9;
/// Dots; the least that Qt does not round to nothing (it counts in 64ths).
constexpr double ligaturesOff = 1.0 / 64;

QFont deviceFont(const Font& font) {
  QFont deviceFont = fonts::fontNamed(font);
  deviceFont.setHintingPreference(QFont::PreferNoHinting);
  // Any spacing keeps ligatures out, which readers would copy as one character: "\ufb01le:///".
  deviceFont.setLetterSpacing(QFont::AbsoluteSpacing, ligaturesOff);
  return deviceFont;
}

QString onOneLine(QString text) {
  text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
  for (const char16_t lineBreak : {u'\n', u'\r', u'\u2028', u'\u2029'}) {
    text.replace(QChar(lineBreak), QChar(u' '));
  }
  return text;
}

QString withLineSeparators(QString text) {
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  text.replace(QChar(u'\r'), QChar(u'\n'));
  return text.replace(QChar(u'\n'), QChar(QChar::LineSeparator));
}

void setOptions(QTextLayout& layout, QTextOption::WrapMode wrapping) {
  QTextOption option;
  option.setWrapMode(wrapping);
  option.setUseDesignMetrics(true);
  layout.setTextOption(option);
}

/// Lays out lines of `width` one below the other. Returns how many of them end above `height`, at
/// least one.
int layOut(QTextLayout& layout, double width, double height) {
  double y = 0;
  int fitting = 0;
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    if (fitting > 0 && y + line.height() > height + 1) break;
    line.setPosition({0, y});
    y += line.height();
    ++fitting;
  }
  layout.endLayout();
  return fitting;
}

}  // namespace

TextSetter::TextSetter(QPaintDevice& device)
    : device_(device), dotsPerPoint_(device.logicalDpiY() / 72.0) {}

QSizeF TextSetter::sizeOfText(const QString& text, const Font& font) const {
  if (text.isEmpty() || font.pointSize <= 0) return {0, 0};
  QTextLayout layout(onOneLine(text), deviceFont(font), &device_);
  setOptions(layout, QTextOption::NoWrap);
  layOut(layout, widestLine, widestLine);
  const QTextLine line = layout.lineAt(0);
  return QSizeF(line.horizontalAdvance(), line.height()) / dotsPerPoint_;
}

void TextSetter::drawText(QPainter& painter, const QString& text, const Font& font,
                          const QRectF& rectangle, LineBreaking breaking) const {
  const QRectF area(rectangle.topLeft() * dotsPerPoint_, rectangle.size() * dotsPerPoint_);
  const bool oneLine = breaking == LineBreaking::None;
  QTextLayout layout(oneLine ? onOneLine(text) : withLineSeparators(text), deviceFont(font),
                     &device_);
  setOptions(layout, oneLine ? QTextOption::NoWrap : QTextOption::WrapAtWordBoundaryOrAnywhere);
  const int lines = layOut(layout, area.width() + 1, area.height());
  painter.save();
  painter.setClipRect(area);
  painter.setPen(Qt::black);
  for (int index = 0; index < lines; ++index) {
    layout.lineAt(index).draw(&painter, area.topLeft());
  }
  painter.restore();
}

CanvasWriter::CanvasWriter()
    : writer_(&buffer_), setter_((writer_.setResolution(dotsPerInch), writer_)) {
  buffer_.open(QIODevice::WriteOnly);
  writer_.setPageMargins(QMarginsF());
}

CanvasWriter::~CanvasWriter() = default;

void CanvasWriter::beginPage(QSizeF size) {
  pageIsDrawn_ = false;
  // Whole points: the page size of Qt has no others. The overlay is placed by its upper left
  // corner.
  const QSizeF whole(std::ceil(size.width()), std::ceil(size.height()));
  writer_.setPageSize(QPageSize(whole, QPageSize::Point, QString(), QPageSize::ExactMatch));
  if (painter_.isActive()) {
    writer_.newPage();
  } else {
    painter_.begin(&writer_);
  }
}

QByteArray CanvasWriter::finish() {
  if (painter_.isActive()) painter_.end();
  return buffer_.data();
}

QSizeF CanvasWriter::sizeOfText(const QString& text, const Font& font) const {
  return setter_.sizeOfText(text, font);
}

void CanvasWriter::drawText(const QString& text, const Font& font, const QRectF& rectangle,
                            LineBreaking breaking) {
  if (text.isEmpty() || font.pointSize <= 0 || rectangle.width() <= 0 || rectangle.height() <= 0)
    return;
  pageIsDrawn_ = true;
  setter_.drawText(painter_, text, font, rectangle, breaking);
}

namespace {

/// Measures as the writer draws: by a writer that never draws.
class WriterMeasure : public TextMeasure {
 public:
  QSizeF sizeOfText(const QString& text, const Font& font) const override {
    return writer_.sizeOfText(text, font);
  }

 private:
  CanvasWriter writer_;
};

}  // namespace

std::unique_ptr<TextMeasure> createTextMeasure() {
  return std::make_unique<WriterMeasure>();
}

}  // namespace pdf
