#pragma once

#include <QAbstractScrollArea>
#include <QPointer>
#include <memory>
#include <optional>

class QMimeData;
class QTimer;

namespace ui {

class DropLine;

enum class DropOperation { On, Above };

/// What the table shows. Main thread.
class QueueTableDataSource {
 public:
  virtual ~QueueTableDataSource() = default;
  virtual int numberOfRowsInTableView() const = 0;
  /// The row's widget, made if it does not exist; it goes on belonging to the table.
  virtual QWidget* tableViewViewForRow(int row) = 0;
  /// Points.
  virtual int tableViewHeightOfRow(int row) const = 0;
  /// The row that a widget shows; none when it shows none any more.
  virtual std::optional<int> tableViewRowForView(const QWidget* view) const = 0;
  /// Rows outside of this range are out of sight: their widgets may go.
  virtual void tableViewShowsRows(int first, int last) = 0;
  virtual std::unique_ptr<QMimeData> tableViewPasteboardWriterForRow(int row) const = 0;
  virtual Qt::DropAction tableViewValidateDrop(int proposedRow, DropOperation proposed) const = 0;
  virtual bool tableViewAcceptDrop(const QMimeData& data, int row, DropOperation operation) = 0;
};

/// The queue's list: one column of widgets, of which only those near the visible part exist. Rows
/// are never selected; the arrow keys, Page Up, Page Down, Home and End move the keyboard between
/// them. Dragging a row moves it within the table.
class QueueTableView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit QueueTableView(QWidget* parent = nullptr);

  /// Not owned; none when it ends before the table.
  void setDataSource(QueueTableDataSource* dataSource);

  /// The controls that the keyboard reaches after the last row, in their order.
  void setNextInTabOrder(const QList<QPointer<QWidget>>& controls) { nextInTabOrder_ = controls; }

  /// The one kind of drag that the table accepts, and only from itself. Empty: none.
  void registerForDraggedType(const QString& type);

  /// Has the rows laid out anew, later; many calls at once cost one layout.
  void reloadData();

  /// Lays out now what a reload would lay out later.
  void layoutRows();

  /// The row under a point of the viewport, as a drop would meet it: in the outer quarters of a row
  /// the drop is above it or above the next, else on it.
  std::pair<int, DropOperation> proposedDropAt(int y) const;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  int rowCount() const;
  int rowHeight() const;
  void layoutRowsOnce();
  void updateScrollBar(int count);
  std::pair<int, int> rowsNearby(int count) const;
  QList<QPointer<QWidget>> widgetsOfRows(int first, int last);
  void adopt(QWidget* widget);
  void place(const QList<QPointer<QWidget>>& widgets);
  void orderFocus();
  int focusedRow() const;
  void focusRow(int row);
  bool moveFocus(int key);
  void considerDrag(const QMouseEvent& event);
  void startDrag(QWidget* rowWidget);
  bool accepts(const QDropEvent& event) const;
  void showDropLine(int row);

  QueueTableDataSource* dataSource_ = nullptr;
  QString draggedType_;
  QTimer* layoutTimer_;
  DropLine* dropLine_;
  /// The widgets of the rows, in the order of the rows.
  QList<QPointer<QWidget>> placed_;
  QList<QPointer<QWidget>> nextInTabOrder_;
  QPointer<QWidget> pressedRow_;
  QPoint pressed_;
  int lastFocusedRow_ = -1;
  bool layingOut_ = false;
};

}  // namespace ui
