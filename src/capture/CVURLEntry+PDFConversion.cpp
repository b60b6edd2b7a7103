#include <QFile>
#include <QSaveFile>
#include <thread>

#include "capture/CVPageView.h"
#include "capture/CVURLEntry.h"
#include "capture/CVWebDocumentView.h"
#include "capture/CaptureError.h"
#include "capture/ConversionTurn.h"
#include "capture/LowDocument.h"
#include "capture/MainQueueWait.h"
#include "delivery/CVUtils.h"
#include "platform/pdf/DocumentFacts.h"
#include "platform/rendering/Print.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

/// A save job into the file, on the user's paper.
printing::PrintInfo saveJobTo(const QUrl& target) {
  printing::PrintInfo info(printing::PrintInfo::sharedPrintInfo().dictionary());
  info.setJobDisposition(printing::JobDisposition::Save);
  info.setJobSavingURL(target);
  info.setHorizontallyCentered(false);
  info.setVerticallyCentered(false);
  info.setHorizontalPagination(printing::PaginationModeFit);
  return info;
}

void setMargins(printing::PrintInfo& info, double points) {
  info.setTopMargin(points);
  info.setBottomMargin(points);
  info.setLeftMargin(points);
  info.setRightMargin(points);
}

}  // namespace

QUrl CVURLEntry::doProcessingForTextConversionModeWithPreferences(
    const std::shared_ptr<CVPreferences>& preferences, MaybeError& error, bool risky) {
  const QUrl result = utils()->createTemporaryFile();
  error = settlePage();
  if (error) return result;
  if (preferences->usePagination()) {
    error = runPrintOperation(std::make_shared<CVWebDocumentView>(page()), result);
  } else if (risky) {
    error = printThroughWorker(result);
  } else {
    error = printTallTo(result);
  }
  return result;
}

std::shared_ptr<printing::PrintOperation> CVURLEntry::setupPaginationPrintInfoWithView(
    const std::shared_ptr<printing::PrintableView>& view, const QUrl& targetURL) {
  printing::PrintInfo info = saveJobTo(targetURL);
  info.setOrientation(static_cast<printing::PaperOrientation>(preferences_->orientation()));
  setMargins(info, static_cast<double>(preferences_->margin()));
  pageView_ = std::make_shared<CVPageView>(QRectF());
  pageView_->setPreferences(preferences_);
  pageView_->setPrintView(view);
  pageView_->setParent(self());
  auto operation = printing::PrintOperation::printOperationWithView(pageView_, info);
  operation->setShowsPrintPanel(preferences_->destination() == u"Printer"_s);
  operation->setShowsProgressPanel(false);
  if (const auto name = title()) operation->setJobTitle(*name);
  return operation;
}

std::shared_ptr<printing::PrintOperation> CVURLEntry::setupSinglePagePrintInfoWithView(
    const std::shared_ptr<printing::PrintableView>& view, const QUrl& targetURL) {
  printing::PrintInfo info = saveJobTo(targetURL);
  info.setOrientation(printing::PaperOrientationPortrait);
  setMargins(info, 0);
  info.setPaperSize(view->frame().size());
  auto operation = printing::PrintOperation::printOperationWithView(view, info);
  operation->setShowsPrintPanel(false);
  operation->setShowsProgressPanel(false);
  return operation;
}

MaybeError CVURLEntry::runPrintOperation(const std::shared_ptr<printing::PrintableView>& view,
                                         const QUrl& target) {
  using Outcome = Result<printing::PrintOutcome>;
  const Outcome outcome = waitForMainQueue<Outcome>(
      [entry = self(), view, target](auto answer) {
        entry->setupPaginationPrintInfoWithView(view, target)->runOperation(answer);
      },
      tl::unexpected(capture::interrupted()));
  if (!outcome) return outcome.error();
  if (preferences_->destination() == u"Printer"_s) return std::nullopt;
  const auto facts = pdf::documentFacts(target.toLocalFile());
  if (!facts) return facts.error();
  std::lock_guard lock(resultMutex_);
  conversionFacts_ = CVConversionFacts{facts->pageSizes.front(), facts->pageCount()};
  return std::nullopt;
}

MaybeError CVURLEntry::printTallTo(const QUrl& target) {
  using Printed = Result<rendering::PrintedDocument>;
  const Printed printed = waitForMainQueue<Printed>(
      [engine = page(), path = target.toLocalFile()](auto answer) {
        rendering::printTall(engine, lowDocument, path, answer);
      },
      tl::unexpected(capture::interrupted()));
  if (!printed) return printed.error();
  std::lock_guard lock(resultMutex_);
  conversionFacts_ = CVConversionFacts{printed->pageSize, printed->pages};
  return std::nullopt;
}

/// Fills `printData_` with the whole document's PDF once it may start. Runs on a thread of its own.
void CVURLEntry::doPrintPDFFromView() {
  started_.get_future().wait();
  const QUrl file = utils()->createTemporaryFile();
  MaybeError error = printTallTo(file);
  QFile printed(file.toLocalFile());
  if (!error && printed.open(QIODevice::ReadOnly)) printData_ = printed.readAll();
  printed.remove();
  finished_.set_value(error);
}

MaybeError CVURLEntry::printThroughWorker(const QUrl& target) {
  std::thread worker([entry = self()] { entry->doPrintPDFFromView(); });
  started_.set_value();
  MaybeError error = finished_.get_future().get();
  worker.join();
  if (error) return error;
  QSaveFile file(target.toLocalFile());
  const bool written = file.open(QIODevice::WriteOnly) &&
                       file.write(printData_) == printData_.size() && file.commit();
  if (written) return std::nullopt;
  return capture::makeError(capture::CannotWrite, u"“%1” could not be written: %2."_s.arg(
                                                      target.toLocalFile(), file.errorString()));
}

std::optional<QUrl> CVURLEntry::createTemporaryPDFWithConversionMode(const QString& mode,
                                                                     MaybeError& error) {
  auto preferences = CVObjectRepository::singleton().getPreferences()->copyWithZone();
  preferences->setConversionMode(mode);
  preferences->setUsePagination(true);
  preferences->setFormat(u"PDF"_s);
  const ConversionTurn turn(*this, loadedPage());
  {
    std::lock_guard lock(resultMutex_);
    preferences_ = preferences;
  }
  if (mode == u"Vector"_s) {
    return doProcessingForTextConversionModeWithPreferences(preferences, error, false);
  }
  if (mode == u"Image"_s) {
    return doProcessingForImageConversionModeWithPreferences(preferences, error, false);
  }
  return std::nullopt;
}
