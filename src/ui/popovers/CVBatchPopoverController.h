#pragma once

#include <QWidget>
#include <memory>

#include "ui/window/BatchState.h"

namespace Ui {
class CVBatchPopoverController;
}

/// The commands for the whole queue. Each is one call of the application delegate.
class CVBatchPopoverController : public QWidget {
  Q_OBJECT

 public:
  explicit CVBatchPopoverController(const ui::BatchState& state, QWidget* parent = nullptr);
  ~CVBatchPopoverController() override;

 private:
  std::unique_ptr<Ui::CVBatchPopoverController> layout_;
};
