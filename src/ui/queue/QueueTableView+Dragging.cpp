#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPixmap>
#include <QScrollBar>

#include "ui/queue/DropLine.h"
#include "ui/queue/QueueTableView.h"

namespace ui {
namespace {

constexpr int dropLineHeight = 3;
/// A drag this near to the edge scrolls, points.
constexpr int scrollingEdge = 24;

/// What is dragged leaves the line that shows where it will go in sight.
constexpr int pictureReduction = 2;

QPixmap smallPictureOf(QWidget& row) {
  const QPixmap picture = row.grab();
  QPixmap small = picture.scaled(picture.size() / pictureReduction, Qt::IgnoreAspectRatio,
                                 Qt::SmoothTransformation);
  small.setDevicePixelRatio(picture.devicePixelRatio());
  return small;
}

}  // namespace

void QueueTableView::registerForDraggedType(const QString& type) {
  draggedType_ = type;
  viewport()->setAcceptDrops(!type.isEmpty());
}

/// Presses that no control of a row wanted reach the row itself and begin a drag.
bool QueueTableView::eventFilter(QObject* watched, QEvent* event) {
  auto* row = qobject_cast<QWidget*>(watched);
  if (event->type() == QEvent::MouseButtonPress) {
    const auto& press = static_cast<const QMouseEvent&>(*event);
    pressedRow_ = press.button() == Qt::LeftButton ? row : nullptr;
    pressed_ = press.globalPosition().toPoint();
  } else if (event->type() == QEvent::MouseMove && pressedRow_ == row) {
    considerDrag(static_cast<const QMouseEvent&>(*event));
  } else if (event->type() == QEvent::FocusIn) {
    lastFocusedRow_ = focusedRow();
  }
  return QAbstractScrollArea::eventFilter(watched, event);
}

void QueueTableView::considerDrag(const QMouseEvent& event) {
  const int moved = (event.globalPosition().toPoint() - pressed_).manhattanLength();
  if (!(event.buttons() & Qt::LeftButton) || moved < QApplication::startDragDistance()) return;
  QWidget* row = pressedRow_;
  pressedRow_ = nullptr;
  startDrag(row);
}

void QueueTableView::startDrag(QWidget* rowWidget) {
  const auto row = dataSource_->tableViewRowForView(rowWidget);
  if (!row) return;
  auto* drag = new QDrag(this);
  drag->setMimeData(dataSource_->tableViewPasteboardWriterForRow(*row).release());
  drag->setPixmap(smallPictureOf(*rowWidget));
  drag->setHotSpot(rowWidget->mapFromGlobal(pressed_) / pictureReduction);
  drag->exec(Qt::MoveAction);
}

std::pair<int, DropOperation> QueueTableView::proposedDropAt(int y) const {
  const int position = qMax(0, y + verticalScrollBar()->value());
  const int row = position / rowHeight();
  const int within = position % rowHeight();
  if (row >= rowCount()) return {rowCount(), DropOperation::Above};
  if (within < rowHeight() / 4) return {row, DropOperation::Above};
  if (within >= rowHeight() - rowHeight() / 4) return {row + 1, DropOperation::Above};
  return {row, DropOperation::On};
}

bool QueueTableView::accepts(const QDropEvent& event) const {
  return dataSource_ && event.source() == this && event.mimeData()->hasFormat(draggedType_);
}

void QueueTableView::dragEnterEvent(QDragEnterEvent* event) {
  if (!accepts(*event)) return event->ignore();
  event->setDropAction(Qt::MoveAction);
  event->accept();
}

void QueueTableView::dragMoveEvent(QDragMoveEvent* event) {
  if (!accepts(*event)) return event->ignore();
  const int y = event->position().toPoint().y();
  QScrollBar& bar = *verticalScrollBar();
  if (y < scrollingEdge) bar.setValue(bar.value() - bar.singleStep() / 4);
  if (y > viewport()->height() - scrollingEdge) bar.setValue(bar.value() + bar.singleStep() / 4);
  const auto [row, operation] = proposedDropAt(y);
  const Qt::DropAction action = dataSource_->tableViewValidateDrop(row, operation);
  showDropLine(action == Qt::IgnoreAction ? -1 : row);
  event->setDropAction(action);
  event->setAccepted(action != Qt::IgnoreAction);
}

void QueueTableView::dragLeaveEvent(QDragLeaveEvent* event) {
  showDropLine(-1);
  event->accept();
}

void QueueTableView::dropEvent(QDropEvent* event) {
  showDropLine(-1);
  const auto [row, operation] = proposedDropAt(event->position().toPoint().y());
  const bool allowed =
      accepts(*event) && dataSource_->tableViewValidateDrop(row, operation) != Qt::IgnoreAction;
  if (!allowed) return event->ignore();
  event->setDropAction(Qt::MoveAction);
  event->setAccepted(dataSource_->tableViewAcceptDrop(*event->mimeData(), row, operation));
}

void QueueTableView::showDropLine(int row) {
  dropLine_->setVisible(row >= 0);
  if (row < 0) return;
  const int y = row * rowHeight() - verticalScrollBar()->value() - dropLineHeight / 2;
  const int lowest = qMax(0, viewport()->height() - dropLineHeight);
  dropLine_->setGeometry(0, qBound(0, y, lowest), viewport()->width(), dropLineHeight);
}

}  // namespace ui
