#pragma once

#include <QPointer>
#include <QWidget>

#include "platform/printing/PrintPanel.h"

class QPrinter;

/// The desktop's print panel, as a sheet on the main window: printer or file, copies, pages, sides,
/// paper and orientation. Main thread.
class QtPrintPanel : public printing::PrintPanel {
 public:
  /// The window that the sheet is shown on; none: a window of its own. Not owned.
  explicit QtPrintPanel(QWidget* mainWindow) : mainWindow_(mainWindow) {}

  void show(const printing::PrintInfo& info,
            std::function<void(std::optional<Answer>)> completion) override;

 private:
  const QPointer<QWidget> mainWindow_;
};

/// Gives the panel's printer the paper and orientation of `info`.
void preparePrinter(QPrinter& printer, const printing::PrintInfo& info);

/// What a printer that the panel has set up stands for; margins and the rest come from `info`.
printing::PrintPanel::Answer readPrinter(const QPrinter& printer, const printing::PrintInfo& info);
