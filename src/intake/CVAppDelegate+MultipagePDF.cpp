#include <QFile>
#include <QSaveFile>
#include <chrono>

#include "intake/CVAppDelegate.h"
#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntry.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

/// An entry that is no longer in the queue changes its state unheard, so the wait looks for itself
/// now and then.
constexpr auto longestUnheardChange = std::chrono::milliseconds(100);

QUrl withPDFAppended(QUrl file) {
  file.setPath(file.path() + u".pdf"_s);
  return file;
}

std::optional<QUrl> downloadLocation() {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  return preferences ? preferences->downloadLocation() : std::nullopt;
}

/// Replaces what is there by a copy, whole or not at all.
void replaceByCopy(const QUrl& source, const QUrl& target) {
  constexpr qint64 pieceSize = 1024 * 1024;
  QFile from(source.toLocalFile());
  QSaveFile to(target.toLocalFile());
  bool complete = from.open(QIODevice::ReadOnly) && to.open(QIODevice::WriteOnly);
  while (complete && !from.atEnd()) {
    const QByteArray piece = from.read(pieceSize);
    complete = !piece.isEmpty() && to.write(piece) == piece.size();
  }
  if (!complete || !to.commit()) logLine(u"The multipage PDF could not be written"_s);
}

}  // namespace

void CVAppDelegate::performPDFMergingForURLs(const QList<QUrl>& files) {
  setState(u"Mergin PDFs..."_s);
  withMainWindow([self = shared_from_this(), files](CVMainWindow& window) {
    window.beginSavePanel(u"Multipage"_s, downloadLocation(),
                          [self, files](const std::optional<QUrl>& chosen) {
                            if (!chosen) return self->restoreState();
                            self->mergeInBackground(files, withPDFAppended(*chosen));
                          });
  });
}

void CVAppDelegate::mergeInBackground(const QList<QUrl>& files, const QUrl& target) {
  dispatch::globalAsync(dispatch::Priority::High, [self = shared_from_this(), files, target] {
    self->mergePDFURLs(files, target);
    self->restoreState();
  });
}

bool CVAppDelegate::mergePDFURLs(const QList<QUrl>& files, const QUrl& target) {
  if (!services_.multipageAssembler) return false;
  const MaybeError error = services_.multipageAssembler->mergePDFURLs(files, target);
  if (error) logLine(u"Merging PDF files failed: "_s + error->localizedDescription);
  return !error;
}

void CVAppDelegate::createMultipagePDFTemporaryFileWithConversionMode(
    const QString& mode, std::function<void(std::optional<QUrl>)> completion) {
  setState(u"Creating Multipage PDF..."_s);
  dispatch::globalAsync(dispatch::Priority::High, [self = shared_from_this(), mode, completion] {
    completion(self->mergedTemporaryPDF(mode));
    self->restoreState();
  });
}

std::optional<QUrl> CVAppDelegate::mergedTemporaryPDF(const QString& mode) {
  const QList<QUrl> files = temporaryPDFsOfEntries(mode);
  const auto utils = CVObjectRepository::singleton().getUtils();
  if (files.isEmpty() || !utils) return std::nullopt;
  const QUrl merged = withPDFAppended(utils->createTemporaryFile());
  return mergePDFURLs(files, merged) ? std::optional(merged) : std::nullopt;
}

QList<QUrl> CVAppDelegate::temporaryPDFsOfEntries(const QString& mode) {
  const auto table = tableViewController();
  QList<QUrl> files;
  if (!table) return files;
  for (const auto& entry : table->getEntries()) {
    waitUntilIdle(*entry);
    if (isEnding_) return {};
    MaybeError error;
    if (const auto file = entry->createTemporaryPDFWithConversionMode(mode, error)) {
      files.append(*file);
    }
  }
  return files;
}

void CVAppDelegate::waitUntilIdle(const CVEntry& entry) {
  const auto isIdle = [&entry] {
    const CVEntryState state = entry.state();
    return state != CVEntryStateDownloading && state != CVEntryStateProcessing;
  };
  std::unique_lock lock(entriesMutex_);
  while (!isEnding_ && !isIdle())
    entriesChanged_.wait_for(lock, longestUnheardChange);
}

void CVAppDelegate::saveAsMultipagePDFVector() {
  saveAsMultipagePDF(u"Vector"_s);
}

void CVAppDelegate::saveAsMultipagePDFImage() {
  saveAsMultipagePDF(u"Image"_s);
}

void CVAppDelegate::emailAsMultipagePDFVector() {
  emailAsMultipagePDF(u"Vector"_s);
}

void CVAppDelegate::emailAsMultipagePDFImage() {
  emailAsMultipagePDF(u"Image"_s);
}

void CVAppDelegate::saveAsMultipagePDF(const QString& mode) {
  const auto saveTo = [self = shared_from_this(), mode](const std::optional<QUrl>& chosen) {
    if (!chosen) return;
    self->createMultipagePDFTemporaryFileWithConversionMode(
        mode, [target = withPDFAppended(*chosen)](const std::optional<QUrl>& file) {
          if (file) replaceByCopy(*file, target);
        });
  };
  withMainWindow([saveTo](CVMainWindow& window) {
    window.closeBatchPopover();
    window.beginSavePanel(u"Multipage"_s, downloadLocation(), saveTo);
  });
}

void CVAppDelegate::emailAsMultipagePDF(const QString& mode) {
  withMainWindow([](CVMainWindow& window) { window.closeBatchPopover(); });
  createMultipagePDFTemporaryFileWithConversionMode(mode, [](const std::optional<QUrl>& file) {
    const auto utils = CVObjectRepository::singleton().getUtils();
    if (file && utils) utils->newMailWithAttachment(*file);
  });
}
