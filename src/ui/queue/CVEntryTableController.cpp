#include "ui/queue/CVEntryTableController.h"

#include <QMimeData>
#include <algorithm>

#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "ui/queue/EntryRowView.h"

using namespace Qt::StringLiterals;

namespace {

/// Points.
constexpr int rowHeight = 130;
const QString draggedType = u"public.data"_s;

void processIfAutomatic(const std::shared_ptr<CVEntry>& entry, const MaybeError& error) {
  auto& repository = CVObjectRepository::singleton();
  const auto preferences = repository.getPreferences();
  const auto tasks = repository.getEntryTaskManager();
  if (error || !preferences || !tasks || !preferences->processAutomatically()) return;
  tasks->enqueueEntryForProcessing(entry, {});
}

/// One index a line, as a drag of several rows would carry one item for each.
std::vector<std::size_t> draggedRows(const QMimeData& data) {
  std::vector<std::size_t> rows;
  for (const QByteArray& line : data.data(draggedType).split('\n')) {
    bool valid = false;
    const qulonglong row = line.toULongLong(&valid);
    if (valid) rows.push_back(row);
  }
  return rows;
}

}  // namespace

std::shared_ptr<CVEntryTableController> CVEntryTableController::create(
    CVEntryViewController::Services services) {
  return std::shared_ptr<CVEntryTableController>(new CVEntryTableController(std::move(services)));
}

CVEntryTableController::CVEntryTableController(CVEntryViewController::Services services)
    : services_(std::move(services)) {}

CVEntryTableController::~CVEntryTableController() {
  if (tableView_) tableView_->setDataSource(nullptr);
}

void CVEntryTableController::setTableView(ui::QueueTableView* tableView) {
  tableView_ = tableView;
  if (!tableView) return;
  tableView->registerForDraggedType(draggedType);
  tableView->setDataSource(this);
}

void CVEntryTableController::setDelegate(std::weak_ptr<CVEntryTableControllerDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void CVEntryTableController::reload() {
  dispatch::mainAsync([weak = weak_from_this()] {
    const auto self = weak.lock();
    if (self && self->tableView_) self->tableView_->reloadData();
  });
}

void CVEntryTableController::notifyNumberOfEntriesChanged() {
  if (auto delegate = delegate_.lock()) delegate->entryTableControllerNumberOfEntriesChanged(*this);
}

void CVEntryTableController::addEntry(const std::shared_ptr<CVEntry>& entry) {
  const Row row = CVEntryViewController::create(services_);
  row->setEntry(entry);
  row->setDelegate(weak_from_this());
  {
    std::lock_guard lock(mutex_);
    entryControllers_.push_back(row);
  }
  notifyNumberOfEntriesChanged();
  dispatch::mainAsync([weak = weak_from_this(), entry] {
    if (auto self = weak.lock()) self->prepare(entry);
  });
}

void CVEntryTableController::prepare(const std::shared_ptr<CVEntry>& entry) {
  if (tableView_) tableView_->reloadData();
  if (auto tasks = CVObjectRepository::singleton().getEntryTaskManager()) {
    tasks->enqueueEntryForPreparing(entry, processIfAutomatic);
  }
}

void CVEntryTableController::removeEntry(const std::shared_ptr<CVEntry>& entry) {
  std::lock_guard lock(mutex_);
  const auto found = std::ranges::find(entryControllers_, entry, &CVEntryViewController::entry);
  if (found == entryControllers_.end()) return;
  const Row removed = *found;
  entryControllers_.erase(found);
  notifyNumberOfEntriesChanged();
  reload();
}

std::vector<std::shared_ptr<CVEntry>> CVEntryTableController::getEntries() const {
  std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<CVEntry>> entries;
  entries.reserve(entryControllers_.size());
  for (const Row& row : entryControllers_)
    entries.push_back(row->entry());
  return entries;
}

void CVEntryTableController::clearAll() {
  std::vector<Row> removed;
  {
    std::lock_guard lock(mutex_);
    removed.swap(entryControllers_);
  }
  notifyNumberOfEntriesChanged();
  reload();
}

void CVEntryTableController::clearCompleted() {
  std::vector<Row> removed;
  {
    std::lock_guard lock(mutex_);
    const auto stays = [](const Row& row) {
      return row->entry()->state() != CVEntryStateDone || row->entry()->error();
    };
    const auto gone =
        std::stable_partition(entryControllers_.begin(), entryControllers_.end(), stays);
    removed.assign(gone, entryControllers_.end());
    entryControllers_.erase(gone, entryControllers_.end());
  }
  notifyNumberOfEntriesChanged();
  reload();
}

void CVEntryTableController::updateTheme() {
  std::vector<Row> rows;
  {
    std::lock_guard lock(mutex_);
    rows.assign(entryControllers_.begin(), entryControllers_.end());
  }
  for (const Row& row : rows)
    row->updateTheme();
}

void CVEntryTableController::entryViewControllerRemoveWasRequested(CVEntryViewController& row) {
  removeEntry(row.entry());
}

void CVEntryTableController::entryViewControllerStateChanged(CVEntryViewController&) {
  if (auto delegate = delegate_.lock()) delegate->entryTableControllerStateOfEntriesChanged(*this);
}

void CVEntryTableController::entryViewControllerMustGoUp(CVEntryViewController& row) {
  moveBy(row, -1);
}

void CVEntryTableController::entryViewControllerMustGoDown(CVEntryViewController& row) {
  moveBy(row, 1);
}

void CVEntryTableController::moveBy(CVEntryViewController& row, int distance) {
  std::lock_guard lock(mutex_);
  const auto found = std::ranges::find(entryControllers_, &row, &Row::get);
  if (found == entryControllers_.end()) return;
  const auto from = found - entryControllers_.begin();
  const auto to = from + distance;
  if (to < 0 || to >= std::ssize(entryControllers_)) return;
  moveRow(std::size_t(from), std::size_t(to));
  reload();
}

void CVEntryTableController::moveRow(std::size_t from, std::size_t to) {
  const Row row = entryControllers_[from];
  entryControllers_.erase(entryControllers_.begin() + std::ptrdiff_t(from));
  entryControllers_.insert(entryControllers_.begin() + std::ptrdiff_t(to), row);
}

int CVEntryTableController::numberOfRowsInTableView() const {
  std::lock_guard lock(mutex_);
  return int(entryControllers_.size());
}

QWidget* CVEntryTableController::tableViewViewForRow(int row) {
  std::lock_guard lock(mutex_);
  CVEntryViewController& controller = *entryControllers_.at(std::size_t(row));
  controller.setMovable(row > 0, row + 1 < int(entryControllers_.size()));
  return controller.view();
}

std::optional<int> CVEntryTableController::tableViewRowForView(const QWidget* view) const {
  std::lock_guard lock(mutex_);
  const auto found = std::ranges::find_if(
      entryControllers_, [view](const Row& row) { return view && row->viewIfLoaded() == view; });
  if (found == entryControllers_.end()) return std::nullopt;
  return int(found - entryControllers_.begin());
}

int CVEntryTableController::tableViewHeightOfRow(int) const {
  return rowHeight;
}

void CVEntryTableController::tableViewShowsRows(int first, int last) {
  std::lock_guard lock(mutex_);
  for (std::size_t row = 0; row < entryControllers_.size(); ++row) {
    const bool inSight = int(row) >= first && int(row) <= last;
    const auto* view = entryControllers_[row]->viewIfLoaded();
    if (!inSight && view && !view->holdsFocus()) entryControllers_[row]->unloadView();
  }
}

std::unique_ptr<QMimeData> CVEntryTableController::tableViewPasteboardWriterForRow(int row) const {
  auto data = std::make_unique<QMimeData>();
  data->setData(draggedType, QByteArray::number(row));
  return data;
}

Qt::DropAction CVEntryTableController::tableViewValidateDrop(int,
                                                             ui::DropOperation proposed) const {
  return proposed == ui::DropOperation::Above ? Qt::MoveAction : Qt::IgnoreAction;
}

/// Rows from above the gap end just above it, each later one pushing the earlier ones up; rows from
/// below it end just below it, in the order of the drag. The queue may have become shorter since
/// the drag began: a row that is gone is left out.
bool CVEntryTableController::tableViewAcceptDrop(const QMimeData& data, int row,
                                                 ui::DropOperation) {
  std::lock_guard lock(mutex_);
  const auto count = std::ptrdiff_t(entryControllers_.size());
  const auto target = std::min<std::ptrdiff_t>(std::max(row, 0), count);
  std::ptrdiff_t belowOffset = 0;
  std::ptrdiff_t aboveOffset = 0;
  for (const std::size_t dragged : draggedRows(data)) {
    if (dragged >= entryControllers_.size()) continue;
    const auto index = std::ptrdiff_t(dragged);
    if (index < target) {
      if (index + belowOffset < 0) continue;
      moveRow(std::size_t(index + belowOffset), std::size_t(target - 1));
      --belowOffset;
    } else {
      if (target + aboveOffset >= count) continue;
      moveRow(dragged, std::size_t(target + aboveOffset));
      ++aboveOffset;
    }
  }
  if (tableView_) tableView_->reloadData();
  return true;
}
