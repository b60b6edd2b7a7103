#pragma once

#include <memory>

#include "intake/CVAppDelegate.h"
#include "ui/controls/CVDragView.h"

namespace ui {

/// Hands what is dropped on the main window to the application delegate, which knows no views.
class DragDelegate : public CVDragViewDelegate {
 public:
  explicit DragDelegate(std::shared_ptr<CVAppDelegate> delegate) : delegate_(std::move(delegate)) {}

  void dragViewFilesWereDropped(CVDragView&, const QStringList& paths) override {
    if (delegate_) delegate_->dragViewFilesWereDropped(paths);
  }
  void dragViewStringWasDragged(CVDragView&, const QString& text) override {
    if (delegate_) delegate_->dragViewStringWasDragged(text);
  }

 private:
  const std::shared_ptr<CVAppDelegate> delegate_;
};

}  // namespace ui
