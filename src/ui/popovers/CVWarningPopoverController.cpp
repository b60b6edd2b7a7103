#include "ui/popovers/CVWarningPopoverController.h"

#include <QFontInfo>
#include <QScrollArea>
#include <QVBoxLayout>

#include "ui/look/Theme.h"
#include "ui/popovers/CVWarningEntryController.h"
#include "ui_CVWarningPopoverController.h"

namespace {

constexpr int rowHeight = 60;
/// Pixels of the text that the layout's width is made for.
constexpr double usualText = 12;

/// The rows keep their height, so larger text, of which fewer lines fit, needs a longer line too.
int widthForText(int usualWidth) {
  const double larger = QFontInfo(ui::textFont(ui::TextSize::Body)).pixelSize() / usualText;
  return qRound(usualWidth * larger * larger);
}

}  // namespace

CVWarningPopoverController::CVWarningPopoverController(QStringList warnings, QWidget* parent)
    : QWidget(parent), warnings_(std::move(warnings)) {
  Ui::CVWarningPopoverController layout;
  layout.setupUi(this);
  setMinimumWidth(widthForText(minimumWidth()));
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
