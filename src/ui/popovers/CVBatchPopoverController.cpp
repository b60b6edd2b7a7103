#include "ui/popovers/CVBatchPopoverController.h"

#include "intake/CVAppDelegate.h"
#include "ui/look/Theme.h"
#include "ui/popovers/CommandRow.h"
#include "ui/popovers/Delegate.h"
#include "ui_CVBatchPopoverController.h"

using namespace Qt::StringLiterals;
using ui::BatchState;
using ui::CommandRow;

namespace {

struct BatchCommand {
  CVPlainButton* Ui::CVBatchPopoverController::*button;
  CVPassthroughTextField* Ui::CVBatchPopoverController::*icon;
  CVPassthroughTextField* Ui::CVBatchPopoverController::*field;
  const char16_t* glyph;
  bool BatchState::*enabled;
  const char* whyNot;
  void (CVAppDelegate::*command)();
};

using Layout = Ui::CVBatchPopoverController;
constexpr char needsTwo[] = "At least two pages must be loaded.";
constexpr char needsOne[] = "No page is loaded yet.";
constexpr char needsDone[] = "No page is done yet.";
constexpr char needsEntry[] = "The queue is empty.";

const BatchCommand commands[] = {
    {&Layout::saveMultipageVectorButton, &Layout::saveMultipageVectorIcon,
     &Layout::saveMultipageVectorField, u"merge-save", &BatchState::enableBatch, needsTwo,
     &CVAppDelegate::saveAsMultipagePDFVector},
    {&Layout::emailMultipageVectorButton, &Layout::emailMultipageVectorIcon,
     &Layout::emailMultipageVectorField, u"merge-mail", &BatchState::enableBatch, needsTwo,
     &CVAppDelegate::emailAsMultipagePDFVector},
    {&Layout::saveMultipageImageButton, &Layout::saveMultipageImageIcon,
     &Layout::saveMultipageImageField, u"picture-save", &BatchState::enableBatch, needsTwo,
     &CVAppDelegate::saveAsMultipagePDFImage},
    {&Layout::emailMultipageImageButton, &Layout::emailMultipageImageIcon,
     &Layout::emailMultipageImageField, u"picture-mail", &BatchState::enableBatch, needsTwo,
     &CVAppDelegate::emailAsMultipagePDFImage},
    {&Layout::processAllButton, &Layout::processAllIcon, &Layout::processAllField, u"process-all",
     &BatchState::enableProcessAll, needsOne, &CVAppDelegate::processAll},
    {&Layout::clearAllButton, &Layout::clearAllIcon, &Layout::clearAllField, u"clear-all",
     &BatchState::enableClearAll, needsEntry, &CVAppDelegate::clearAll},
    {&Layout::clearCompletedButton, &Layout::clearCompletedIcon, &Layout::clearCompletedField,
     u"clear-completed", &BatchState::enableClearCompleted, needsDone,
     &CVAppDelegate::clearCompleted},
};

}  // namespace

CVBatchPopoverController::CVBatchPopoverController(const BatchState& state, QWidget* parent)
    : QWidget(parent), layout_(std::make_unique<Ui::CVBatchPopoverController>()) {
  layout_->setupUi(this);
  for (const BatchCommand& command : commands) {
    CVPlainButton* button = (*layout_).*command.button;
    const CommandRow row{*button, *((*layout_).*command.icon), *((*layout_).*command.field)};
    row.setUp(QString::fromUtf16(command.glyph), ui::Theme::current());
    row.setAvailable(state.*command.enabled, tr(command.whyNot));
    connect(button, &QPushButton::clicked, this, [act = command.command] {
      if (auto delegate = ui::applicationDelegate()) ((*delegate).*act)();
    });
  }
}

CVBatchPopoverController::~CVBatchPopoverController() = default;
