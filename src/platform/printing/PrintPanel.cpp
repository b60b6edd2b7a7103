#include "platform/printing/PrintPanel.h"

namespace printing {
namespace {

std::shared_ptr<PrintPanel>& sharedPanel() {
  static std::shared_ptr<PrintPanel> panel;
  return panel;
}

}  // namespace

std::shared_ptr<PrintPanel> PrintPanel::shared() {
  return sharedPanel();
}

void PrintPanel::setShared(std::shared_ptr<PrintPanel> panel) {
  sharedPanel() = std::move(panel);
}

}  // namespace printing
