#include "ui/popovers/Popover.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QVBoxLayout>

#include "ui/look/Theme.h"
#include "ui/popovers/Compositing.h"

namespace ui {
namespace {

constexpr int arrow = 10;
constexpr int radius = 10;
constexpr int shadow = 12;
/// Content keeps clear of the rounded corners.
constexpr int padding = 6;

}  // namespace

Popover::Popover(QWidget* content, QWidget* window)
    : QWidget(window, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint) {
  setAttribute(Qt::WA_TranslucentBackground);
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_NoMouseReplay);  // a click on the button that opened it only closes it
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(content->accessibleName());
  auto* layout = new QVBoxLayout(this);
  const int margin = shadow + arrow;
  layout->setContentsMargins(margin, margin + padding, margin, margin + padding);
  layout->addWidget(content);
}

QRect Popover::body() const {
  const int margin = shadow + arrow;
  return rect().adjusted(margin, margin, -margin, -margin);
}

void Popover::showRelativeTo(const QWidget& anchor, Edge preferred) {
  edge_ = preferred;
  ensurePolished();
  resize(sizeHint());
  const QRect target(anchor.mapToGlobal(QPoint(0, 0)), anchor.size());
  const QScreen* screen = anchor.screen() ? anchor.screen() : QGuiApplication::primaryScreen();
  move(placeAt(target, screen->availableGeometry()));
  shapeWindow();
  show();
  setFocus(Qt::PopupFocusReason);  // the arrow keys and Tab go on from here to the first command
}

QPoint Popover::placeAt(const QRect& anchor, const QRect& screen) {
  const int overlap = shadow;  // the tip of the arrow touches the anchor
  if (edge_ == Edge::Above && anchor.top() - height() + overlap < screen.top()) edge_ = Edge::Below;
  if (edge_ == Edge::Below && anchor.bottom() + height() - overlap > screen.bottom()) {
    edge_ = Edge::Above;
  }
  if (edge_ == Edge::Right && anchor.right() + width() - overlap > screen.right()) {
    edge_ = Edge::Above;
  }
  QPoint place(anchor.center().x() - width() / 2, anchor.top() - height() + overlap);
  if (edge_ == Edge::Below) place.setY(anchor.bottom() - overlap);
  if (edge_ == Edge::Right) place = {anchor.right() - overlap, anchor.center().y() - height() / 2};
  // The shadow may leave the screen: what is seen stays on it, and its arrow off its corner.
  const int left = screen.left() - shadow - arrow;
  const int right = screen.right() + shadow + arrow - width();
  place.setX(qBound(left, place.x(), qMax(left, right)));
  place.setY(qBound(screen.top(), place.y(), qMax(screen.top(), screen.bottom() - height())));
  const QPoint middle = anchor.center() - place;
  if (edge_ == Edge::Above) tip_ = {middle.x(), height() - shadow};
  if (edge_ == Edge::Below) tip_ = {middle.x(), shadow};
  if (edge_ == Edge::Right) tip_ = {shadow, middle.y()};
  return place;
}

QPainterPath Popover::outline() const {
  QPainterPath surface;
  surface.addRoundedRect(QRectF(body()), radius, radius);
  QPolygonF head;
  const double overlap = 1;  // leaves no seam between arrow and surface
  if (edge_ == Edge::Above) {
    const double base = tip_.y() - arrow - overlap;
    head << QPointF(tip_.x() - arrow, base) << QPointF(tip_) << QPointF(tip_.x() + arrow, base);
  } else if (edge_ == Edge::Below) {
    const double base = tip_.y() + arrow + overlap;
    head << QPointF(tip_.x() - arrow, base) << QPointF(tip_) << QPointF(tip_.x() + arrow, base);
  } else {
    const double base = tip_.x() + arrow + overlap;
    head << QPointF(base, tip_.y() - arrow) << QPointF(tip_) << QPointF(base, tip_.y() + arrow);
  }
  QPainterPath arrowHead;
  arrowHead.addPolygon(head);
  arrowHead.closeSubpath();
  return surface.united(arrowHead);
}

/// Without a compositor whatever is transparent would be black.
void Popover::shapeWindow() {
  if (isCompositing()) return;
  QBitmap mask(size());
  mask.clear();
  QPainter painter(&mask);
  painter.setBrush(Qt::color1);
  painter.setPen(Qt::color1);
  painter.drawPath(outline());
  painter.end();
  setMask(mask);
}

void Popover::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::current();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPainterPath path = outline();
  if (mask().isEmpty()) {
    const int strongest = theme.appearance == Appearance::Dark ? 14 : 6;
    for (int spread = shadow; spread > 0; --spread) {
      painter.strokePath(path.translated(0, 2),
                         QPen(QColor(0, 0, 0, strongest - strongest * spread / (shadow + 2)),
                              2.0 * spread, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
  }
  // What the mask leaves of the path's soft edge would be black.
  if (!mask().isEmpty()) painter.fillRect(rect(), theme.hairline);
  painter.setPen(QPen(theme.hairline, 1));
  painter.setBrush(theme.surface);
  painter.drawPath(path);
}

void Popover::closeEvent(QCloseEvent* event) {
  QWidget::closeEvent(event);
  Q_EMIT closed();
}

void Popover::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Down) {
    focusNextChild();
  } else if (event->key() == Qt::Key_Up) {
    focusPreviousChild();
  } else if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace ui
