#include <QFile>
#include <QFileInfo>

#include "capture/CVURLEntry.h"
#include "capture/CaptureError.h"
#include "capture/ConversionAhead.h"
#include "capture/ConversionTurn.h"
#include "capture/ResultName.h"
#include "delivery/CVUtils.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/imaging/BitmapFormat.h"
#include "platform/pdf/PDFDocument.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<CVDefaultPreferences> applicationSettings() {
  return CVObjectRepository::singleton().getPreferences();
}

QString unknownTitle() {
  return u"Unknown title"_s;
}

/// The current date in its plain text form: "2026-11-22 20:34:02 +0000".
QString currentDateText() {
  return QDateTime::currentDateTimeUtc().toString(u"yyyy-MM-dd HH:mm:ss '+0000'"_s);
}

MaybeError fileError(const QUrl& file, const QString& reason) {
  return capture::makeError(capture::CannotWrite,
                            u"“%1” could not be written: %2."_s.arg(file.toLocalFile(), reason));
}

MaybeError copyFile(const QUrl& from, const QUrl& to) {
  QFile source(from.toLocalFile());
  if (source.copy(to.toLocalFile())) return std::nullopt;
  return fileError(to, source.errorString());
}

}  // namespace

void CVURLEntry::processWithCompletion(Completion completion) {
  dispatch::mainAsync([entry = self(), completion = std::move(completion)]() mutable {
    entry->startProcessing(std::move(completion));
  });
}

/// A block that begins another step of the entry sets the field anew.
void CVURLEntry::endStep(Completion& completion, const MaybeError& error) {
  if (const Completion ended = std::exchange(completion, nullptr)) ended(self(), error);
}

void CVURLEntry::startProcessing(Completion completion) {
  if (isLoading()) {
    whenLoaded_.push_back([this, completion](const MaybeError& error) mutable {
      if (error) return endStep(completion, error);
      startProcessing(std::move(completion));
    });
    return;
  }
  if (webView_) webView_->stopLoading();
  if (wkWebView_) wkWebView_->stopLoading();
  processCompletion_ = std::move(completion);
  setCompletionFactor(-1.0);
  const std::shared_ptr<CVPreferences> snapshot = applicationSettings()->copyWithZone();
  const bool nobodyToAsk = !services_.savePanel;
  if (applicationSettings()->processAutomatically() || nobodyToAsk) {
    startAutomatically(snapshot);
  } else {
    startWithSavePanel(snapshot);
  }
}

void CVURLEntry::usePreferences(const std::shared_ptr<CVPreferences>& preferences) {
  std::lock_guard lock(resultMutex_);
  preferences_ = preferences;
}

void CVURLEntry::holdPageForProcessing() {
  processedPage_ = {loadedPage(), currentURL().value_or(QUrl()), title()};
}

void CVURLEntry::startAutomatically(const std::shared_ptr<CVPreferences>& preferences) {
  holdPageForProcessing();
  dispatch::globalAsync(dispatch::Priority::High, [entry = self(), preferences] {
    const QUrl folder = applicationSettings()->downloadLocation().value_or(QUrl());
    preferences->setDownloadLocation(capture::resultInFolder(
        folder, entry->processedPage_.title.value_or(unknownTitle()), preferences->format()));
    entry->doProcessingWithPreferences(preferences);
  });
}

void CVURLEntry::startWithSavePanel(const std::shared_ptr<CVPreferences>& preferences) {
  services_.savePanel->beginSheet(preferences, title().value_or(unknownTitle()),
                                  applicationSettings()->downloadLocation(),
                                  [entry = self(), preferences](const std::optional<QUrl>& chosen) {
                                    entry->savePanelEnded(preferences, chosen);
                                  });
}

void CVURLEntry::savePanelEnded(const std::shared_ptr<CVPreferences>& preferences,
                                const std::optional<QUrl>& chosen) {
  if (!chosen) {
    endStep(processCompletion_, std::nullopt);
    return;
  }
  if (isLoading()) {
    whenLoaded_.push_back([this, preferences, chosen](const MaybeError& error) {
      if (error) return endStep(processCompletion_, error);
      savePanelEnded(preferences, chosen);
    });
    return;
  }
  holdPageForProcessing();
  const bool completed = services_.savePanel->chosenNames() == ChosenNames::Completed;
  preferences->setDownloadLocation(
      completed ? capture::withExtensionOfFormat(*chosen, preferences->format()) : *chosen);
  dispatch::globalAsync(dispatch::Priority::High, [entry = self(), preferences] {
    entry->doProcessingWithPreferences(preferences);
  });
}

void CVURLEntry::doProcessingWithPreferences(const std::shared_ptr<CVPreferences>& preferences) {
  executeProcessingWithPreferences(preferences);
}

void CVURLEntry::executeProcessingWithPreferences(
    const std::shared_ptr<CVPreferences>& preferences) {
  if (showsProcessedPage()) setState(CVEntryStateProcessing);
  MaybeError error;
  const QUrl temporary = convert(preferences, error);
  if (!error) {
    const auto location = preferences->downloadLocation();
    if (applicationSettings()->processAutomatically() && location) {
      preferences->setDownloadLocation(utils()->uncollideFile(*location));
    }
    deliver(temporary, *preferences, error);
  } else {
    QFile::remove(temporary.toLocalFile());
  }
  endProcessing(error);
}

QUrl CVURLEntry::convert(const std::shared_ptr<CVPreferences>& preferences, MaybeError& error) {
  std::shared_ptr<capture::ConversionAhead> ahead;
  {
    std::lock_guard lock(resultMutex_);
    ahead = std::exchange(conversionAhead_, nullptr);
  }
  // Waited for before the turn, which it needs for itself.
  const capture::Conversion conversion = ahead ? ahead->take() : capture::Conversion();
  const ConversionTurn turn(*this, processedPage_.page);
  usePreferences(preferences);
  if (!ahead) return convertNow(preferences, error);
  if (!ahead->suits(*preferences)) {
    QFile::remove(conversion.file.toLocalFile());
    return convertNow(preferences, error);
  }
  error = conversion.error;
  std::lock_guard lock(resultMutex_);
  conversionFacts_ = conversion.facts;
  return conversion.file;
}

QUrl CVURLEntry::convertNow(const std::shared_ptr<CVPreferences>& preferences, MaybeError& error) {
  if (preferences->conversionMode() == u"Vector"_s) {
    return doProcessingForTextConversionModeWithPreferences(preferences, error, false);
  }
  return doProcessingForImageConversionModeWithPreferences(preferences, error, false);
}

void CVURLEntry::convertAhead() {
  auto ahead = capture::ConversionAhead::begin(
      applicationSettings()->copyWithZone(),
      [entry = self(), page = loadedPage()](const std::shared_ptr<CVPreferences>& preferences) {
        const ConversionTurn turn(*entry, page);
        capture::Conversion conversion;
        conversion.file = entry->convertNow(preferences, conversion.error);
        conversion.facts = entry->conversionFacts();
        return conversion;
      });
  std::lock_guard lock(resultMutex_);
  conversionAhead_ = std::move(ahead);
}

void CVURLEntry::deliver(const QUrl& temporary, CVPreferences& preferences, MaybeError& error) {
  const std::optional<QString> destination = preferences.destination();
  if (destination == u"Disk"_s) {
    deliverToDisk(temporary, preferences, error);
  } else if (destination != u"Printer"_s) {
    deliverElsewhere(temporary, preferences, error);
  }
  QFile::remove(temporary.toLocalFile());
}

void CVURLEntry::deliverToDisk(const QUrl& temporary, CVPreferences& preferences,
                               MaybeError& error) {
  // The writers replace what is at the target by renaming, so a failure loses nothing.
  const QUrl target = preferences.downloadLocation().value_or(QUrl());
  if (preferences.format() == u"PDF"_s) {
    writeDocument(temporary, target, error);
  } else {
    writePicture(temporary, target, preferences, error);
  }
}

void CVURLEntry::writeDocument(const QUrl& temporary, const QUrl& target, MaybeError& error) {
  auto document = pdf::PDFDocument::initWithURL(temporary);
  if (!document) {
    error = document.error();
    return;
  }
  if (!title()) setTitle(unknownTitle());
  const QString address = processedPage_.address.toString(QUrl::FullyEncoded);
  (*document)->setDocumentAttributes({
      {pdf::PDFDocumentTitleAttribute, processedPage_.title.value_or(unknownTitle())},
      {pdf::PDFDocumentCreatorAttribute, address},
      {pdf::PDFDocumentSubjectAttribute, address},
      {pdf::PDFDocumentAuthorAttribute, address},
      {pdf::PDFDocumentCreationDateAttribute, currentDateText()},
      {pdf::PDFDocumentProducerAttribute, u"Corvalis"_s},
  });
  error = (*document)->writeToURL(target);
  if (error) return;
  utils()->setWhereFrom(address, target.toLocalFile());
}

void CVURLEntry::writePicture(const QUrl& temporary, const QUrl& target,
                              const CVPreferences& preferences, MaybeError& error) {
  QFile file(temporary.toLocalFile());
  // Mapped, not read: a tall page's picture need not stand in memory.
  const uchar* bytes = file.open(QIODevice::ReadOnly) ? file.map(0, file.size()) : nullptr;
  if (!bytes) {
    error = fileError(target, file.errorString());
    return;
  }
  const auto data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes), file.size());
  const unsigned type = CVPreferences::getFileTypeForConversionFormat(preferences.format());
  utils()->saveDataToFile(data, target, type, preferences.compression(), error,
                          processedPage_.address.toString(QUrl::FullyEncoded));
}

void CVURLEntry::deliverElsewhere(const QUrl& temporary, CVPreferences& preferences,
                                  MaybeError& error) {
  static const QStringList known{u"E-Mail"_s, u"Pasteboard"_s, u"Evernote"_s, u"DropBox"_s};
  const QString destination = preferences.destination().value_or(QString());
  if (!known.contains(destination)) return;
  const QString name = preferences.downloadLocation().value_or(QUrl()).fileName();
  const QUrl folder = utils()->createTemporaryFolder();
  const QUrl target = QUrl::fromLocalFile(folder.toLocalFile() + u'/' + name);
  if (preferences.format() == u"PDF"_s) {
    error = copyFile(temporary, target);
  } else {
    writePicture(temporary, target, preferences, error);
  }
  if (error) return;
  if (destination == u"E-Mail"_s) utils()->newMailWithAttachment(target);
  if (destination == u"Pasteboard"_s) utils()->pasteFileToClipboard(target);
  if (destination == u"Evernote"_s) {
    const QString noteTitle = QFileInfo(target.toLocalFile()).completeBaseName();
    utils()->importFileIntoEvernote(target, noteTitle);
  }
  if (destination == u"DropBox"_s) utils()->uploadFileToDropBox(target);
}

bool CVURLEntry::showsProcessedPage() const {
  return loadedPage() == processedPage_.page;
}

void CVURLEntry::endProcessing(const MaybeError& error) {
  if (showsProcessedPage()) showOutcome(error);
  processedPage_.page.reset();
  endStep(processCompletion_, error);
}

void CVURLEntry::showOutcome(const MaybeError& error) {
  if (error) {
    auto record = std::make_shared<CVError>();
    setError(record);
    record->setErrorType(1);
    record->setErrorDescription(error->localizedDescription);
  }
  setState(CVEntryStateDone);
}

bool CVURLEntry::canBeRevealed() const {
  std::lock_guard lock(resultMutex_);
  return preferences_ && preferences_->destination() == u"Disk"_s;
}

void CVURLEntry::reveal() {
  const std::optional<QUrl> location = resultLocation();
  if (location && services_.selectFile) services_.selectFile(location->toLocalFile());
}

void CVURLEntry::miniBrowserSnapWithURL(CVMiniBrowserWindowController&, const QUrl& url,
                                        const std::optional<QString>& source, const QSizeF& size) {
  forceSize_ = true;
  forcedSize_ = size;
  setInitialURL(url);
  setSource(source);
  forceJavascript_ = false;
  CVObjectRepository::singleton().getEntryTaskManager()->enqueueEntryForPreparing(
      shared_from_this(), nullptr);
}
