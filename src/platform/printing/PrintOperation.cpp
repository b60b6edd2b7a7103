#include "platform/printing/PrintOperation.h"

#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"

namespace printing {

using namespace Qt::StringLiterals;

std::shared_ptr<PrintOperation> PrintOperation::printOperationWithView(
    std::shared_ptr<PrintableView> view, const PrintInfo& info) {
  return std::shared_ptr<PrintOperation>(new PrintOperation(std::move(view), info));
}

PrintOperation::PrintOperation(std::shared_ptr<PrintableView> view, const PrintInfo& info)
    : view_(std::move(view)), info_(info), jobTitle_(u"Corvalis"_s) {}

void PrintOperation::runOperation(Completion completion) {
  completion_ = std::move(completion);
  if (showsPrintPanel_ && PrintPanel::shared()) return showPanel();
  const bool goesToPrinter = showsPrintPanel_ || info_.jobDisposition() == JobDisposition::Spool;
  render(goesToPrinter ? std::optional(PrintSettings()) : std::nullopt);
}

void PrintOperation::showPanel() {
  PrintPanel::shared()->show(
      info_, [self = shared_from_this()](const std::optional<PrintPanel::Answer>& answer) {
        if (!answer) return self->finish(PrintOutcome::Cancelled);
        // The panel decides on paper and printer, not on where the operation keeps its document.
        const PrintInfo own = self->info_;
        self->info_ = answer->info;
        self->info_.setJobDisposition(own.jobDisposition());
        self->info_.setJobSavingURL(own.jobSavingURL());
        self->render(answer->settings);
      });
}

QString PrintOperation::documentPath() {
  if (info_.jobDisposition() == JobDisposition::Save) return info_.jobSavingURL().toLocalFile();
  folder_ = std::make_unique<QTemporaryDir>();
  return folder_->isValid() ? folder_->filePath(u"document.pdf"_s) : QString();
}

void PrintOperation::render(const std::optional<PrintSettings>& settings) {
  const QString path = documentPath();
  if (path.isEmpty())
    return finish(
        tl::unexpected(makeError(ErrorSettings, u"There is no place to print the document to."_s)));
  view_->printTo(info_, path, [self = shared_from_this(), settings, path](const MaybeError& error) {
    if (error) return self->finish(tl::unexpected(*error));
    if (!settings) return self->finish(PrintOutcome::Finished);
    self->deliver(path, *settings);
  });
}

/// The print service answers when it likes, so it is asked on a worker thread.
void PrintOperation::deliver(const QString& path, PrintSettings settings) {
  if (settings.title.isEmpty()) settings.title = jobTitle_;
  const auto service = service_ ? service_ : makePrintService();
  dispatch::globalAsync(dispatch::Priority::High,
                        [self = shared_from_this(), service, path, settings = std::move(settings)] {
                          const Result<int> job = deliverDocument(*service, path, settings);
                          dispatch::mainAsync([self, job] {
                            self->finish(job.map([](int) { return PrintOutcome::Finished; }));
                          });
                        });
}

void PrintOperation::finish(const Result<PrintOutcome>& outcome) {
  if (!outcome) logLine(u"Printing: %1"_s.arg(outcome.error().localizedDescription));
  dispatch::mainAsync([self = shared_from_this(), outcome] {
    self->folder_.reset();
    if (const Completion completion = std::exchange(self->completion_, {})) completion(outcome);
  });
}

}  // namespace printing
