#include "app/CaptureCommand.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include "app/CaptureSettings.h"
#include "app/FixedSavePanel.h"
#include "app/OutputName.h"
#include "capture/CVURLEntry.h"
#include "delivery/CVUtils.h"
#include "delivery/PDFMultipageAssembler.h"
#include "intake/RequestInput.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/web/Engine.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

/// While pages are converted, the next ones load.
constexpr int pagesAtOnce = 6;

tl::unexpected<Error> sourceError(const QString& text) {
  return failure(u"source"_s, 1, text);
}

bool isWebAddress(const QUrl& url) {
  return (url.scheme() == u"http"_s || url.scheme() == u"https"_s) && !url.host().isEmpty();
}

Result<QUrl> addressOfFile(const QString& path) {
  const QFileInfo file(path);
  if (!file.exists()) {
    return sourceError(u"There is no such file, and it is no http, https or file address."_s);
  }
  if (file.isDir()) return sourceError(u"This is a folder; name an HTML file in it."_s);
  QFile readable(path);
  if (!readable.open(QIODevice::ReadOnly)) {
    return sourceError(u"The file cannot be read: %1."_s.arg(readable.errorString()));
  }
  return QUrl::fromLocalFile(file.absoluteFilePath());
}

Result<RequestInput::CapturedPage> pageOnStandardInput() {
  QFile input;
  if (!input.open(stdin, QIODevice::ReadOnly)) {
    return sourceError(u"Standard input cannot be read."_s);
  }
  const auto request = RequestInput::readRequestText(input);
  if (!request) return tl::unexpected(request.error());
  return RequestInput::capturedPage(*request, *CVObjectRepository::singleton().getUtils());
}

Result<QUrl> addressOfSource(const QString& source) {
  // Browsers leave characters in addresses that the strict form wants written otherwise.
  const QUrl url(source);
  if (isWebAddress(url)) return url;
  return addressOfFile(url.isLocalFile() ? url.toLocalFile() : source);
}

QString describe(const Error& error) {
  if (!error.localizedDescription.isEmpty()) return error.localizedDescription;
  return u"The page did not finish loading in two minutes."_s;
}

/// Turns an entry's notifications into the progress line.
class ProgressObserver : public CVEntryDelegate {
 public:
  ProgressObserver(CaptureReport& report, qsizetype index) : report_(report), index_(index) {}

  void entryCurrentURLChanged(CVEntry&, const std::optional<QUrl>&) override {}
  void entryRepresentativeImageChanged(CVEntry&,
                                       const std::shared_ptr<const imaging::Image>&) override {}
  void entryTitleChanged(CVEntry&, const std::optional<QString>&) override {}
  void entryError(CVEntry&, const std::shared_ptr<CVError>&) override {}
  void entryStateChanged(CVEntry&, CVEntryState state) override {
    if (state == CVEntryStateProcessing) show(u"Converting"_s);
  }
  void entryCompletionFactorChanged(CVEntry&, double factor) override {
    if (factor >= 0 && factor < 1) show(u"Loading %1 %"_s.arg(qRound(100 * factor)));
  }

 private:
  void show(const QString& step) {
    dispatch::mainAsync(
        [&report = report_, index = index_, step] { report.progress(index, step); });
  }

  CaptureReport& report_;
  const qsizetype index_;
};

}  // namespace

/// Where the user finds the result; none for a page that was joined with others or handed to
/// another program.
std::optional<QString> CaptureCommand::resultFile(const CVURLEntry& entry) const {
  if (options_.multipage || !entry.canBeRevealed()) return std::nullopt;
  return entry.resultLocation().value_or(QUrl()).toLocalFile();
}

struct CaptureCommand::Job {
  qsizetype index = 0;
  std::shared_ptr<CVURLEntry> entry;
  std::shared_ptr<ProgressObserver> observer;
  QElapsedTimer clock;
};

CaptureCommand::CaptureCommand(CaptureOptions options, std::shared_ptr<web::Engine> engine)
    : options_(std::move(options)), report_(options_, options_.sources.size()) {
  services_.engine = std::move(engine);
  services_.pixelsPerPoint = options_.scale;
  services_.thumbnails = Thumbnails::NotShown;
  // The parts of a joined document are converted in another way.
  if (!options_.multipage) services_.conversions = Conversions::Ahead;
  multipageParts_.resize(static_cast<std::size_t>(options_.sources.size()));
}

CaptureCommand::~CaptureCommand() = default;

void CaptureCommand::run(CVDefaultPreferences& settings, Finished finished) {
  finished_ = std::move(finished);
  applyOptions(options_, settings);
  const auto file = preparePlace(settings);
  if (!file) {
    for (qsizetype index = 0; index < options_.sources.size(); ++index) {
      CaptureResult result;
      result.source = options_.sources[index];
      result.error = file.error().localizedDescription;
      report_.finished(index, std::move(result));
    }
    return finishIfComplete();
  }
  if (*file) {
    services_.savePanel = std::make_shared<FixedSavePanel>(**file);
    settings.setProcessAutomatically(false);
  }
  for (int started = 0; started < pagesAtOnce; ++started)
    startNext();
}

/// Sets the folder for the results, which is made if it is missing and they stay there; or returns
/// the file that a single source goes to.
Result<std::optional<QUrl>> CaptureCommand::preparePlace(CVDefaultPreferences& settings) {
  if (options_.multipage) return std::nullopt;
  const std::optional<QString> file = options_.outputFile();
  const QFileInfo place(options_.output.value_or(u"."_s));
  const QString folder = QDir::cleanPath(file ? place.absolutePath() : place.absoluteFilePath());
  const bool staysThere = options_.destination == u"Disk"_s;
  if (staysThere && !QDir().mkpath(folder)) {
    return sourceError(u"The folder “%1” cannot be made."_s.arg(folder));
  }
  if (staysThere && !QFileInfo(folder).isWritable()) {
    return sourceError(u"The folder “%1” cannot be written to."_s.arg(folder));
  }
  settings.setDownloadLocation(QUrl::fromLocalFile(folder));
  if (!file) return std::nullopt;
  return QUrl::fromLocalFile(OutputName::withExtension(place.absoluteFilePath(), options_.format));
}

void CaptureCommand::startNext() {
  if (nextSource_ == options_.sources.size()) return;
  const auto job = std::make_shared<Job>();
  job->index = nextSource_++;
  job->clock.start();
  const auto page = pageOfSource(options_.sources[job->index]);
  if (!page) return end(job, page.error());
  start(job, *page);
}

Result<CaptureCommand::Page> CaptureCommand::pageOfSource(const QString& source) const {
  if (source == u"-"_s) {
    const auto captured = pageOnStandardInput();
    if (!captured) return tl::unexpected(captured.error());
    return Page{captured->url, captured->source};
  }
  const auto address = addressOfSource(source);
  if (!address) return tl::unexpected(address.error());
  return Page{*address, std::nullopt};
}

void CaptureCommand::start(const std::shared_ptr<Job>& job, const Page& page) {
  job->entry = std::make_shared<CVURLEntry>(services_, page.address, page.source, false);
  job->observer = std::make_shared<ProgressObserver>(report_, job->index);
  job->entry->setDelegate(job->observer);
  CVObjectRepository::singleton().getEntryTaskManager()->enqueueEntryForPreparing(
      job->entry, [this, job](const std::shared_ptr<CVEntry>&, const MaybeError& error) {
        dispatch::mainAsync([=, this] { error ? end(job, error) : process(job); });
      });
}

void CaptureCommand::process(const std::shared_ptr<Job>& job) {
  if (options_.multipage) return processForMultipage(job);
  CVObjectRepository::singleton().getEntryTaskManager()->enqueueEntryForProcessing(
      job->entry, [this, job](const std::shared_ptr<CVEntry>&, const MaybeError& error) {
        dispatch::mainAsync([=, this] { end(job, error); });
      });
}

void CaptureCommand::processForMultipage(const std::shared_ptr<Job>& job) {
  const auto mode = CVObjectRepository::singleton().getPreferences()->conversionMode();
  dispatch::globalAsync(dispatch::Priority::High, [this, job, mode] {
    MaybeError error;
    const auto file =
        job->entry->createTemporaryPDFWithConversionMode(mode.value_or(QString()), error);
    dispatch::mainAsync([=, this] {
      if (!error) multipageParts_[static_cast<std::size_t>(job->index)] = file;
      end(job, error);
    });
  });
}

/// Joins what the sources gave, in their order, and ends the run.
void CaptureCommand::writeMultipage(const Finished& finished) {
  QList<QUrl> files;
  for (const auto& part : multipageParts_) {
    if (part) files.append(*part);
  }
  const QString target = QFileInfo(*options_.multipage).absoluteFilePath();
  dispatch::globalAsync(dispatch::Priority::High, [this, files, target, finished] {
    MaybeError error;
    if (!files.isEmpty()) {
      error = PDFMultipageAssembler().mergePDFURLs(files, QUrl::fromLocalFile(target));
    }
    dispatch::mainAsync([=, this] {
      report_.joined(files.isEmpty() ? std::nullopt : std::optional(target), error);
      finished(error || report_.anyFailed() ? 1 : 0);
    });
  });
}

void CaptureCommand::end(const std::shared_ptr<Job>& job, const MaybeError& error) {
  CaptureResult result;
  result.source = options_.sources[job->index];
  result.seconds = static_cast<double>(job->clock.elapsed()) / 1000;
  if (const auto& entry = job->entry) {
    result.address = entry->currentURL().value_or(QUrl()).toString(QUrl::FullyEncoded);
    result.title = entry->title();
    const CVConversionFacts facts = entry->conversionFacts().value_or(CVConversionFacts());
    result.size = facts.size;
    result.pages = facts.pages;
    if (!error) result.file = resultFile(*entry);
  }
  if (error) result.error = describe(*error);
  job->entry.reset();
  report_.finished(job->index, std::move(result));
  startNext();
  finishIfComplete();
}

void CaptureCommand::finishIfComplete() {
  if (!report_.isComplete() || !finished_) return;
  const Finished finished = std::exchange(finished_, nullptr);
  if (options_.multipage) return writeMultipage(finished);
  finished(report_.anyFailed() ? 1 : 0);
}
