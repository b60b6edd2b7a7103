#include <QFile>

#include "capture/CVPrintImageView.h"
#include "capture/CVURLEntry.h"
#include "capture/CaptureError.h"
#include "capture/LowDocument.h"
#include "capture/MainQueueWait.h"
#include "capture/PictureFile.h"
#include "capture/PictureText.h"
#include "delivery/CVUtils.h"
#include "platform/pdf/PicturePages.h"
#include "platform/rendering/CapturePicture.h"
#include "platform/rendering/Settle.h"
#include "settings/CVPreferences.h"

using namespace Qt::StringLiterals;

namespace {

/// The kind of file that the intermediate picture becomes. A PDF takes it in strips, at any height.
imaging::BitmapFileType finalType(const CVPreferences& preferences) {
  return imaging::bitmapFileTypeWithCode(
      CVPreferences::getFileTypeForConversionFormat(preferences.format()));
}

}  // namespace

QUrl CVURLEntry::doProcessingForImageConversionModeWithPreferences(
    const std::shared_ptr<CVPreferences>& preferences, MaybeError& error, bool risky) {
  const QUrl result = utils()->createTemporaryFile();
  const bool isDocument = preferences->format() == u"PDF"_s;
  const bool isPicture = !preferences->usePagination() && !risky && !isDocument;
  const QUrl pictureFile = isPicture ? result : utils()->createTemporaryFile();
  const Result<PagePicture> picture = picturePage(*preferences, pictureFile);
  if (!picture) {
    error = picture.error();
    QFile::remove(pictureFile.toLocalFile());
    return result;
  }
  if (isPicture) return result;
  printImageView_ = std::make_shared<CVPrintImageView>(*picture);
  if (preferences->usePagination()) {
    error = runPrintOperation(printImageView_, result);
  } else if (risky) {
    error = printThroughWorker(result);
  } else {
    error = writePicturePDF(*picture, result);
  }
  printImageView_.reset();
  QFile::remove(pictureFile.toLocalFile());
  return result;
}

MaybeError CVURLEntry::settlePage() {
  const auto engine = page();
  if (!engine) return capture::makeError(capture::NotLoaded, u"The page is not loaded."_s);
  return waitForMainQueue<MaybeError>(
      [engine](auto answer) {
        // A page that refreshes itself must not swap its document in the middle of a conversion.
        engine->holdDocument();
        rendering::settle(engine, {}, answer);
      },
      capture::interrupted());
}

/// The picture is tagged with its address when it is delivered.
Result<PagePicture> CVURLEntry::picturePage(const CVPreferences& preferences, const QUrl& target) {
  if (const MaybeError unsettled = settlePage()) return tl::unexpected(*unsettled);
  imaging::PictureOptions options;
  options.pixelsPerPoint = services_.pixelsPerPoint;
  const auto file =
      std::make_shared<PictureFile>(target.toLocalFile(), finalType(preferences), options);

  rendering::PictureOptions request;
  request.scale = services_.pixelsPerPoint;
  request.lowDocument = lowDocument;
  using Captured = Result<rendering::CapturedPicture>;
  const auto captured = waitForMainQueue<Captured>(
      [engine = page(), request, file](auto answer) {
        rendering::capturePicture(engine, request, file, answer);
      },
      tl::unexpected(capture::interrupted()));
  if (!captured) return tl::unexpected(captured.error());
  if (const MaybeError unfinished = file->finish()) return tl::unexpected(*unfinished);

  PagePicture picture;
  picture.size = captured->size;
  {
    std::lock_guard lock(resultMutex_);
    conversionFacts_ = CVConversionFacts{QSizeF(captured->devicePixels), 1};
  }
  if (preferences.format() != u"PDF"_s) return picture;

  using Layer = Result<rendering::TextLayer>;
  auto text = waitForMainQueue<Layer>(
      [engine = page()](auto answer) { rendering::textLayer(engine, answer); },
      tl::unexpected(capture::interrupted()));
  if (!text) return tl::unexpected(text.error());
  auto strips = imaging::readPictureStrips(target.toLocalFile());
  if (!strips) return tl::unexpected(strips.error());
  picture.text = std::move(*text);
  picture.strips = std::move(*strips);
  return picture;
}

MaybeError CVURLEntry::writePicturePDF(const PagePicture& picture, const QUrl& target) {
  const pdf::PicturePage whole =
      pdf::wholePicturePage(picture.size, picture.strips.pixels.height());
  const auto written =
      pdf::writePicturePages(picture.strips, picture.size, {whole},
                             capture::pictureText(picture.text), target.toLocalFile());
  if (!written) return written.error();
  std::lock_guard lock(resultMutex_);
  conversionFacts_ = CVConversionFacts{whole.paper, written->pageCount};
  return std::nullopt;
}
