#pragma once

#include <QTemporaryDir>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/printing/PrintInfo.h"
#include "platform/printing/PrintPanel.h"
#include "platform/printing/PrintService.h"
#include "platform/printing/PrintableView.h"

namespace printing {

enum class PrintOutcome { Finished, Cancelled };

/// One print of one view: the view's pages become a PDF, which stays at the saving URL (a saved
/// job) and, when the panel was to be shown, goes to the printer that the user chose there. A
/// spooled job without the panel goes to the default queue. Main thread.
class PrintOperation : public std::enable_shared_from_this<PrintOperation> {
 public:
  using Completion = std::function<void(Result<PrintOutcome>)>;

  static std::shared_ptr<PrintOperation> printOperationWithView(std::shared_ptr<PrintableView> view,
                                                                const PrintInfo& info);

  const std::shared_ptr<PrintableView>& view() const { return view_; }
  const PrintInfo& printInfo() const { return info_; }

  /// On at first, both.
  bool showsPrintPanel() const { return showsPrintPanel_; }
  void setShowsPrintPanel(bool shows) { showsPrintPanel_ = shows; }
  /// Kept for those who show progress themselves; the operation has no panel of its own.
  bool showsProgressPanel() const { return showsProgressPanel_; }
  void setShowsProgressPanel(bool shows) { showsProgressPanel_ = shows; }

  /// The job's name in the queue. At first "Corvalis".
  void setJobTitle(const QString& title) { jobTitle_ = title; }
  /// Used in place of the machine's own. Set before running.
  void setPrintService(std::shared_ptr<PrintService> service) { service_ = std::move(service); }

  /// Runs once, without blocking; the operation keeps itself alive until `completion` (once, main
  /// thread).
  void runOperation(Completion completion);

 private:
  PrintOperation(std::shared_ptr<PrintableView> view, const PrintInfo& info);

  void showPanel();
  void render(const std::optional<PrintSettings>& settings);
  void deliver(const QString& path, PrintSettings settings);
  void finish(const Result<PrintOutcome>& outcome);
  /// Where the PDF is written: the saving URL, or a file of the operation's own. Empty when there
  /// is none.
  QString documentPath();

  std::shared_ptr<PrintableView> view_;
  PrintInfo info_;
  bool showsPrintPanel_ = true;
  bool showsProgressPanel_ = true;
  QString jobTitle_;
  std::shared_ptr<PrintService> service_;
  Completion completion_;
  std::unique_ptr<QTemporaryDir> folder_;
};

}  // namespace printing
