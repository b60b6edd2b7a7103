#include "ui/popovers/CVWarningPopoverController.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include "ui/popovers/CVWarningEntryController.h"
#include "ui_CVWarningPopoverController.h"

namespace {

constexpr int rowHeight = 60;

}  // namespace

CVWarningPopoverController::CVWarningPopoverController(QStringList warnings, QWidget* parent)
    : QWidget(parent), warnings_(std::move(warnings)) {
  Ui::CVWarningPopoverController layout;
  layout.setupUi(this);
  for (const QString& warning : warnings_) {
    auto* row = new CVWarningEntryController(warning);
    row->setFixedHeight(rowHeight);
    layout.rows->addWidget(row);
  }
  layout.tableView->viewport()->setAutoFillBackground(false);
  layout.list->setAutoFillBackground(false);
  layout.list->setFixedHeight(numberOfRows() * rowHeight);
  setMaximumHeight(numberOfRows() * rowHeight);
  resize(width(), numberOfRows() * rowHeight);
}
