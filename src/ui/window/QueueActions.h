#pragma once

#include <QAction>

#include "ui/window/CVMainWindowController.h"

/// The menu commands whose availability follows the queue. Owned by the window.
struct CVMainWindowController::QueueActions {
  QAction* saveVector = nullptr;
  QAction* emailVector = nullptr;
  QAction* saveImage = nullptr;
  QAction* emailImage = nullptr;
  QAction* processAll = nullptr;
  QAction* clearAll = nullptr;
  QAction* clearCompleted = nullptr;
  QAction* warnings = nullptr;
};
