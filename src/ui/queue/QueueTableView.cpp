#include "ui/queue/QueueTableView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>

#include "ui/queue/AccessibleRoles.h"
#include "ui/queue/DropLine.h"

namespace ui {
namespace {

/// Rows kept ready on either side of the visible part.
constexpr int spareRows = 1;

bool holdsFocus(const QWidget* widget) {
  const QWidget* focused = QApplication::focusWidget();
  return focused && widget && (focused == widget || widget->isAncestorOf(focused));
}

}  // namespace

QueueTableView::QueueTableView(QWidget* parent)
    : QAbstractScrollArea(parent),
      layoutTimer_(new QTimer(this)),
      dropLine_(new DropLine(viewport())) {
  installAccessibleRoles();
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  setAccessibleName(tr("Queue"));
  dropLine_->setObjectName(QStringLiteral("dropLine"));
  dropLine_->hide();
  layoutTimer_->setSingleShot(true);
  connect(layoutTimer_, &QTimer::timeout, this, &QueueTableView::layoutRows);
}

void QueueTableView::setDataSource(QueueTableDataSource* dataSource) {
  dataSource_ = dataSource;
  reloadData();
}

void QueueTableView::reloadData() {
  if (!layoutTimer_->isActive()) layoutTimer_->start(0);
}

int QueueTableView::rowCount() const {
  return dataSource_ ? dataSource_->numberOfRowsInTableView() : 0;
}

int QueueTableView::rowHeight() const {
  return dataSource_ ? dataSource_->tableViewHeightOfRow(0) : 1;
}

void QueueTableView::layoutRows() {
  layoutTimer_->stop();
  if (!dataSource_) return;
  if (layingOut_) return reloadData();  // the scroll bar came or went, or moved
  layingOut_ = true;
  layoutRowsOnce();
  layingOut_ = false;
  const bool lostItsRow = lastFocusedRow_ >= 0 && !QApplication::focusWidget();
  if (lostItsRow && rowCount() > 0 && isActiveWindow())
    focusRow(qMin(lastFocusedRow_, rowCount() - 1));
}

void QueueTableView::layoutRowsOnce() {
  const int count = rowCount();
  const int focused = focusedRow();
  if (focused >= 0) lastFocusedRow_ = focused;
  updateScrollBar(count);
  const auto [first, last] = rowsNearby(count);
  dataSource_->tableViewShowsRows(first, last);
  place(widgetsOfRows(first, last));
  orderFocus();
  dropLine_->raise();
}

void QueueTableView::updateScrollBar(int count) {
  verticalScrollBar()->setPageStep(viewport()->height());
  verticalScrollBar()->setSingleStep(rowHeight() / 4);
  verticalScrollBar()->setRange(0, qMax(0, count * rowHeight() - viewport()->height()));
}

std::pair<int, int> QueueTableView::rowsNearby(int count) const {
  const int offset = verticalScrollBar()->value();
  const int below = (offset + viewport()->height() - 1) / rowHeight();
  return {qMax(0, offset / rowHeight() - spareRows), qMin(count - 1, below + spareRows)};
}

/// Besides the rows of the range, the row that the keyboard is in keeps its place.
QList<QPointer<QWidget>> QueueTableView::widgetsOfRows(int first, int last) {
  QList<QPointer<QWidget>> widgets;
  for (int row = first; row <= last; ++row) {
    QWidget* widget = dataSource_->tableViewViewForRow(row);
    adopt(widget);
    widgets += widget;
  }
  for (const QPointer<QWidget>& widget : std::as_const(placed_)) {
    if (!widget || widgets.contains(widget)) continue;
    const bool keeps = holdsFocus(widget) && dataSource_->tableViewRowForView(widget);
    keeps ? widgets.append(widget) : widget->hide();
  }
  return widgets;
}

void QueueTableView::adopt(QWidget* widget) {
  if (widget->parentWidget() == viewport()) return;
  widget->setParent(viewport());
  widget->installEventFilter(this);
}

void QueueTableView::place(const QList<QPointer<QWidget>>& widgets) {
  const int offset = verticalScrollBar()->value();
  for (const QPointer<QWidget>& widget : widgets) {
    const int row = dataSource_->tableViewRowForView(widget).value_or(0);
    widget->setGeometry(0, row * rowHeight() - offset, viewport()->width(), rowHeight());
    widget->show();
  }
  placed_ = widgets;
}

/// The keyboard goes through the rows in the order of the queue, not in that of their making.
void QueueTableView::orderFocus() {
  std::sort(placed_.begin(), placed_.end(),
            [](const auto& one, const auto& other) { return one->y() < other->y(); });
  QWidget* previous = nullptr;
  for (const QPointer<QWidget>& row : std::as_const(placed_)) {
    if (previous) QWidget::setTabOrder(previous, row);
    previous = row;
    for (QWidget* control : row->findChildren<QWidget*>()) {
      if (control->focusPolicy() == Qt::NoFocus) continue;
      QWidget::setTabOrder(previous, control);
      previous = control;
    }
  }
  for (const QPointer<QWidget>& control : std::as_const(nextInTabOrder_)) {
    if (previous && control) QWidget::setTabOrder(previous, control);
    previous = control;
  }
}

void QueueTableView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  layoutRows();
}

void QueueTableView::scrollContentsBy(int, int) {
  layoutRows();
}

int QueueTableView::focusedRow() const {
  for (const QPointer<QWidget>& widget : placed_) {
    if (holdsFocus(widget)) return dataSource_->tableViewRowForView(widget).value_or(-1);
  }
  return -1;
}

void QueueTableView::focusRow(int row) {
  const int top = row * rowHeight();
  const int offset = verticalScrollBar()->value();
  const int lowest = qMin(top, top + rowHeight() - viewport()->height());
  lastFocusedRow_ = row;
  verticalScrollBar()->setValue(qBound(lowest, offset, top));
  layoutRows();
  dataSource_->tableViewViewForRow(row)->setFocus(Qt::TabFocusReason);
}

bool QueueTableView::moveFocus(int key) {
  const int row = focusedRow();
  const int count = rowCount();
  if (row < 0) return false;
  const int page = qMax(1, viewport()->height() / rowHeight());
  int target = row;
  if (key == Qt::Key_Up) target = row - 1;
  if (key == Qt::Key_Down) target = row + 1;
  if (key == Qt::Key_PageUp) target = row - page;
  if (key == Qt::Key_PageDown) target = row + page;
  if (key == Qt::Key_Home) target = 0;
  if (key == Qt::Key_End) target = count - 1;
  if (target == row) return false;
  focusRow(qBound(0, target, count - 1));
  return true;
}

void QueueTableView::keyPressEvent(QKeyEvent* event) {
  const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (!plain || !moveFocus(event->key())) QAbstractScrollArea::keyPressEvent(event);
}

}  // namespace ui
