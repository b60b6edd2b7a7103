#include "platform/rendering/CapturePicture.h"

#include <QJsonObject>
#include <cmath>

#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/FlatDocument.h"
#include "platform/rendering/PageTurn.h"
#include "platform/rendering/PicturePipeline.h"
#include "platform/rendering/RenderingError.h"
#include "platform/rendering/ViewportPicture.h"
#include "platform/web/Page.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

/// Each strip costs the engine a new layout of the document, so there are few; packed, two of them
/// are a matter of megabytes.
constexpr double pixelsPerStrip = 32 * 1024 * 1024;
/// Strips begin at multiples of this, so that their device rows are whole at any scale of two
/// decimals.
constexpr double stripUnit = 100;
/// Of 49,000 rows the engine gave every one, of 60,000 none.
constexpr double highestStrip = 32000;
/// A page that changes its height each time it is pictured is taken as it comes in the end.
constexpr int mostAttempts = 3;
/// One strip being encoded, one waiting.
constexpr int mostWaiting = 2;

double stripHeight(double deviceWidth, double scale) {
  const double rows = pixelsPerStrip / deviceWidth / scale;
  return qBound(stripUnit, std::floor(rows / stripUnit) * stripUnit, highestStrip);
}

/// One picture of a whole document, kept by the callbacks of its steps. Main thread only.
class DocumentPicture : public std::enable_shared_from_this<DocumentPicture> {
 public:
  using Callback = std::function<void(Result<CapturedPicture>)>;

  DocumentPicture(std::shared_ptr<FlatDocument> document, PictureOptions options, Callback callback)
      : document_(std::move(document)), options_(options), callback_(std::move(callback)) {}

  void start(std::shared_ptr<PictureReceiver> receiver);

 private:
  void begin(QSizeF size);
  void request();
  void take(int attempt, Result<web::DataReply> reply);
  void afterLastStrip();
  void compare(const Result<DocumentLayout>& layout);
  void delivered(const MaybeError& error);
  void end(Result<CapturedPicture> result);

  QSizeF pictured(QSizeF document) const;
  int deviceRow(double y) const { return qRound(y * options_.scale); }
  QJsonObject clip(double top, double height) const;

  std::shared_ptr<FlatDocument> document_;
  PictureOptions options_;
  Callback callback_;
  std::shared_ptr<PicturePipeline> pipeline_;
  QSizeF size_;
  QSize devicePixels_;
  /// Up to where strips have been asked for, and up to where they have come.
  double asked_ = 0;
  double taken_ = 0;
  int attempt_ = 0;
  bool measured_ = false;
  bool ended_ = false;
};

void DocumentPicture::start(std::shared_ptr<PictureReceiver> receiver) {
  pipeline_ = std::make_shared<PicturePipeline>(
      std::move(receiver),
      [self = shared_from_this()](const auto& error) { self->delivered(error); });
  begin(pictured(document_->layout().document));
}

QSizeF DocumentPicture::pictured(QSizeF document) const {
  return {document.width(), qMax(1.0, options_.lowDocument.heightFor(document.height()))};
}

void DocumentPicture::begin(QSizeF size) {
  ++attempt_;
  size_ = size;
  devicePixels_ = {qMax(1, qRound(size.width() * options_.scale)),
                   qMax(1, deviceRow(size.height()))};
  asked_ = taken_ = 0;
  measured_ = false;
  pipeline_->begin(devicePixels_);
  request();
}

QJsonObject DocumentPicture::clip(double top, double height) const {
  const double factor = options_.scale / document_->page()->configuration().deviceScaleFactor;
  return {{"x"_L1, 0},
          {"y"_L1, top},
          {"width"_L1, size_.width()},
          {"height"_L1, height},
          {"scale"_L1, factor}};
}

/// Asks for the next strip while the last one is encoded.
void DocumentPicture::request() {
  const bool waitsForStrip = asked_ > taken_;
  if (ended_ || waitsForStrip || asked_ >= size_.height()) return;
  if (pipeline_->waiting() >= mostWaiting) return;
  const double height =
      qMin(stripHeight(devicePixels_.width(), options_.scale), size_.height() - asked_);
  const QJsonObject parameters{{"format"_L1, u"png"_s},
                               {"optimizeForSpeed"_L1, true},
                               {"captureBeyondViewport"_L1, true},
                               {"clip"_L1, clip(asked_, height)}};
  asked_ += height;
  document_->page()->sendForData(
      u"Page.captureScreenshot"_s, parameters, "data",
      [self = shared_from_this(), attempt = attempt_](Result<web::DataReply> reply) {
        self->take(attempt, std::move(reply));
      });
}

void DocumentPicture::take(int attempt, Result<web::DataReply> reply) {
  if (ended_ || attempt != attempt_) return;
  if (!reply) return end(tl::unexpected(reply.error()));
  const int rows = deviceRow(asked_) - deviceRow(taken_);
  pipeline_->add(std::move(reply->data), {devicePixels_.width(), rows});
  taken_ = asked_;
  if (taken_ >= size_.height()) return afterLastStrip();
  request();
}

/// Taking pictures passes through a resize of the page, which can change its height.
void DocumentPicture::afterLastStrip() {
  if (attempt_ >= mostAttempts) {
    measured_ = true;
    return;
  }
  document_->measure([self = shared_from_this()](const auto& layout) { self->compare(layout); });
}

void DocumentPicture::compare(const Result<DocumentLayout>& layout) {
  if (ended_) return;
  if (!layout) return end(tl::unexpected(layout.error()));
  const QSizeF size = pictured(layout->document);
  if (size != size_) return begin(size);
  measured_ = true;
  delivered({});
}

void DocumentPicture::delivered(const MaybeError& error) {
  if (ended_) return;
  if (error) return end(tl::unexpected(*error));
  if (measured_ && pipeline_->waiting() == 0) return end(CapturedPicture{devicePixels_, size_});
  request();
}

void DocumentPicture::end(Result<CapturedPicture> result) {
  ended_ = true;
  pipeline_->stop();
  // Nobody has to wait while the page is put back: whoever wants it next waits for its turn.
  document_->restore([] {});
  // The pipeline's callback holds this object.
  dispatch::mainAsync([pipeline = std::move(pipeline_)] {});
  callback_(std::move(result));
}

}  // namespace

void capturePicture(const std::shared_ptr<web::Page>& page, const PictureOptions& options,
                    std::shared_ptr<PictureReceiver> receiver,
                    std::function<void(Result<CapturedPicture>)> callback) {
  if (options.area == PictureArea::Viewport) {
    return captureViewport(page, options.scale, std::move(receiver), std::move(callback));
  }
  FlatDocument::lay(
      page, FlatPages::One,
      [options, receiver = std::move(receiver),
       callback = std::move(callback)](Result<std::shared_ptr<FlatDocument>> document) {
        if (!document) return callback(tl::unexpected(document.error()));
        std::make_shared<DocumentPicture>(*document, options, callback)->start(receiver);
      });
}

}  // namespace rendering
