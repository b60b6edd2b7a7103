#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/printing/PrintInfo.h"
#include "platform/printing/PrintSettings.h"

namespace printing {

/// Asks the user for a printer and its settings. Main thread.
class PrintPanel {
 public:
  struct Answer {
    PrintSettings settings;
    /// The operation's print info with the paper and orientation that were chosen.
    PrintInfo info;
  };

  virtual ~PrintPanel() = default;

  /// Shows the panel without blocking; `completion` comes once, on the main thread, with none when
  /// the user cancels.
  virtual void show(const PrintInfo& info,
                    std::function<void(std::optional<Answer>)> completion) = 0;

  /// The panel that operations show. Empty where there is nobody to ask (the command line): the
  /// default queue is then used.
  static std::shared_ptr<PrintPanel> shared();
  static void setShared(std::shared_ptr<PrintPanel> panel);
};

}  // namespace printing
