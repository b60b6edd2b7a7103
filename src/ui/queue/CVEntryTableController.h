#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "queue/CVEntryTable.h"
#include "ui/queue/CVEntryViewController.h"
#include "ui/queue/QueueTableView.h"

/// The ordered list of rows behind the window's table. The list is guarded by a lock of its own;
/// entries come and go on any thread, and the table follows on the main thread.
class CVEntryTableController : public CVEntryTable,
                               public CVEntryViewControllerDelegate,
                               public ui::QueueTableDataSource,
                               public std::enable_shared_from_this<CVEntryTableController> {
 public:
  static std::shared_ptr<CVEntryTableController> create(CVEntryViewController::Services services);
  ~CVEntryTableController() override;

  /// Main thread.
  void setTableView(ui::QueueTableView* tableView);

  /// Held weakly: the application delegate owns the table.
  void setDelegate(std::weak_ptr<CVEntryTableControllerDelegate> delegate);

  void addEntry(const std::shared_ptr<CVEntry>& entry) override;
  void removeEntry(const std::shared_ptr<CVEntry>& entry) override;
  std::vector<std::shared_ptr<CVEntry>> getEntries() const override;
  void clearAll() override;
  void clearCompleted() override;

  /// Main thread.
  void updateTheme();

  void entryViewControllerRemoveWasRequested(CVEntryViewController& row) override;
  void entryViewControllerStateChanged(CVEntryViewController& row) override;
  /// The first row cannot go up and the last not down; such a request changes nothing.
  void entryViewControllerMustGoUp(CVEntryViewController& row) override;
  void entryViewControllerMustGoDown(CVEntryViewController& row) override;

  int numberOfRowsInTableView() const override;
  QWidget* tableViewViewForRow(int row) override;
  std::optional<int> tableViewRowForView(const QWidget* view) const override;
  int tableViewHeightOfRow(int row) const override;
  static bool tableViewShouldSelectRow(int) { return false; }
  void tableViewShowsRows(int first, int last) override;
  std::unique_ptr<QMimeData> tableViewPasteboardWriterForRow(int row) const override;
  Qt::DropAction tableViewValidateDrop(int proposedRow, ui::DropOperation proposed) const override;
  bool tableViewAcceptDrop(const QMimeData& data, int row, ui::DropOperation operation) override;

 private:
  using Row = std::shared_ptr<CVEntryViewController>;

  explicit CVEntryTableController(CVEntryViewController::Services services);
  void reload();
  void prepare(const std::shared_ptr<CVEntry>& entry);
  void notifyNumberOfEntriesChanged();
  void moveBy(CVEntryViewController& row, int distance);
  void moveRow(std::size_t from, std::size_t to);

  const CVEntryViewController::Services services_;
  QPointer<ui::QueueTableView> tableView_;
  std::weak_ptr<CVEntryTableControllerDelegate> delegate_;

  mutable std::recursive_mutex mutex_;
  std::vector<Row> entryControllers_;
};
