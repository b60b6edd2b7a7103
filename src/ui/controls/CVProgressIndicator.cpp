#include "ui/controls/CVProgressIndicator.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>
#include <numbers>

#include "platform/dispatch/Timer.h"

namespace {

constexpr double fullTurn = 2 * std::numbers::pi;
constexpr double twelveOClock = 3 * std::numbers::pi / 2;
constexpr double discInset = 5;
constexpr double ringInset = 7;
constexpr double ringWidth = 5;
constexpr double miterLimit = 10;
constexpr double segment = 0.05;
constexpr double strongestTail = 0.8;
constexpr double step = 0.04;
constexpr auto stepInterval = std::chrono::milliseconds(1000 / 36);

const QColor discColor(111, 111, 111, 128);
const QColor trackColor(219, 219, 219, 128);

}  // namespace

CVProgressIndicator::CVProgressIndicator(QWidget* parent)
    : QWidget(parent), foregroundColor_(palette().color(QPalette::Highlight)) {}

CVProgressIndicator::~CVProgressIndicator() = default;

void CVProgressIndicator::setProgress(double progress) {
  progress_ = progress;
  update();
}

void CVProgressIndicator::setForegroundColor(const QColor& color) {
  foregroundColor_ = color;
  update();
}

void CVProgressIndicator::setIndeterminate(bool indeterminate) {
  if (indeterminate == this->indeterminate()) return;
  if (indeterminate) {
    timer_ = dispatch::Timer::every(stepInterval, [this] { updateIndeterminate(); });
  } else {
    currentIndeterminateAngle_ = twelveOClock;
    timer_.reset();
  }
  update();
}

void CVProgressIndicator::updateIndeterminate() {
  currentIndeterminateAngle_ += step;
  if (currentIndeterminateAngle_ >= fullTurn) currentIndeterminateAngle_ -= fullTurn;
  update();
}

void CVProgressIndicator::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  drawDisc(painter);
  drawCircle(painter, trackColor, twelveOClock, twelveOClock);
  if (indeterminate()) {
    double tail = currentIndeterminateAngle_ - twelveOClock;
    if (tail < 0) tail += fullTurn;
    drawFadingCircle(painter, Qt::white, tail, currentIndeterminateAngle_);
  } else if (progress_ != 0) {
    double end = twelveOClock + fullTurn * progress_;
    if (end >= fullTurn) end -= fullTurn;
    drawCircle(painter, foregroundColor_, twelveOClock, end);
  }
}

void CVProgressIndicator::drawDisc(QPainter& painter) const {
  painter.setPen(QPen(discColor, 1));
  painter.setBrush(discColor);
  painter.drawEllipse(QRectF(rect()).adjusted(discInset, discInset, -discInset, -discInset));
}

/// Clockwise from an angle; the painter's own angles are degrees that grow the other way round.
QPainterPath CVProgressIndicator::arc(double fromAngle, double span) const {
  const double radius = width() / 2.0 - ringInset;
  const QRectF circle(width() / 2.0 - radius, height() / 2.0 - radius, 2 * radius, 2 * radius);
  QPainterPath path;
  path.arcMoveTo(circle, -qRadiansToDegrees(fromAngle));
  path.arcTo(circle, -qRadiansToDegrees(fromAngle), -qRadiansToDegrees(span));
  return path;
}

void CVProgressIndicator::drawCircle(QPainter& painter, const QColor& color, double fromAngle,
                                     double toAngle) const {
  double span = std::fmod(toAngle - fromAngle + 2 * fullTurn, fullTurn);
  if (qFuzzyIsNull(span) || qFuzzyCompare(span, fullTurn)) span = fullTurn;
  drawOutline(painter, color, arc(fromAngle, span));
}

void CVProgressIndicator::drawFadingCircle(QPainter& painter, QColor color, double fromAngle,
                                           double toAngle) const {
  double head = toAngle;
  if (fromAngle > head) head += fullTurn;
  for (double angle = fromAngle; head >= angle; angle += segment) {
    const double alpha = qMin((angle - fromAngle) / (head - fromAngle), strongestTail);
    color.setAlphaF(float(alpha));
    drawOutline(painter, color, arc(angle - segment, segment));
  }
}

/// Filled and stroked, so that the band is one point wider than the line.
void CVProgressIndicator::drawOutline(QPainter& painter, const QColor& color,
                                      const QPainterPath& path) const {
  QPainterPathStroker stroker;
  stroker.setWidth(ringWidth);
  stroker.setCapStyle(Qt::FlatCap);
  stroker.setJoinStyle(Qt::MiterJoin);
  stroker.setMiterLimit(miterLimit);
  painter.setPen(QPen(color, 1));
  painter.setBrush(color);
  painter.drawPath(stroker.createStroke(path));
}
