#include "platform/rendering/CapturePicture.h"

#include <QJsonObject>
#include <cmath>

#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/FlatDocument.h"
#include "platform/rendering/OutsideWatch.h"
#include "platform/rendering/PageTurn.h"
#include "platform/rendering/PicturePipeline.h"
#include "platform/rendering/RenderingError.h"
#include "platform/rendering/ViewportPicture.h"
#include "platform/web/Page.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

/// Strips begin at multiples of this, so that their device rows are whole at any scale of two
/// decimals.
constexpr double stripUnit = 100;
/// Of 49,000 rows the engine gave every one, of 60,000 none.
constexpr double highestStrip = 32000;
/// A page that changes its height each time it is pictured is taken as it comes in the end.
constexpr int mostAttempts = 3;
/// One strip being encoded, one waiting.
constexpr int mostWaiting = 2;

/// Of a painted document a strip costs the engine two or three frames: it pictures one while
/// another is packed. Otherwise each strip costs a new layout, so there are few.
double pixelsPerStrip(web::Painted painted) {
  return (painted == web::Painted::WholeDocument ? 8 : 32) * 1024 * 1024;
}

/// One picture of a whole document, kept by the callbacks of its steps. Main thread only.
class DocumentPicture : public std::enable_shared_from_this<DocumentPicture> {
 public:
  using Callback = std::function<void(Result<CapturedPicture>)>;

  DocumentPicture(std::shared_ptr<FlatDocument> document, PictureOptions options, Callback callback)
      : document_(std::move(document)),
        options_(options),
        callback_(std::move(callback)),
        painted_(document_->page()->configuration().painted) {}

  void start(std::shared_ptr<PictureReceiver> receiver);

 private:
  void begin(QSizeF size);
  void request();
  void goOn(double bottom);
  void take(double bottom, Result<web::DataReply> reply);
  void afterLastStrip();
  void compare(const Result<DocumentLayout>& layout);
  void delivered(const MaybeError& error);
  bool isCutOff() const;
  void finish();
  void end(Result<CapturedPicture> result);

  QSizeF pictured(QSizeF document) const;
  double stripHeight() const;
  int deviceRow(double y) const { return qRound(y * options_.scale); }
  QJsonObject clip(double top, double height) const;

  std::shared_ptr<FlatDocument> document_;
  PictureOptions options_;
  Callback callback_;
  web::Painted painted_;
  std::shared_ptr<OutsideWatch> watch_;
  std::shared_ptr<PicturePipeline> pipeline_;
  QSizeF size_;
  QSize devicePixels_;
  /// Up to where strips have been asked for, and up to where they have come.
  double asked_ = 0;
  double taken_ = 0;
  bool engineIsBusy_ = false;
  int attempt_ = 0;
  bool measured_ = false;
  bool ended_ = false;
};

void DocumentPicture::start(std::shared_ptr<PictureReceiver> receiver) {
  const QSize viewport = (document_->layout().viewport * options_.scale).toSize();
  watch_ = std::make_shared<OutsideWatch>(std::move(receiver), viewport);
  pipeline_ = std::make_shared<PicturePipeline>(
      watch_, [self = shared_from_this()](const auto& error) { self->delivered(error); });
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
  engineIsBusy_ = false;
  measured_ = false;
  pipeline_->begin(devicePixels_);
  request();
}

double DocumentPicture::stripHeight() const {
  const double rows = pixelsPerStrip(painted_) / devicePixels_.width() / options_.scale;
  return qBound(stripUnit, std::floor(rows / stripUnit) * stripUnit, highestStrip);
}

QJsonObject DocumentPicture::clip(double top, double height) const {
  const double factor = options_.scale / document_->page()->configuration().deviceScaleFactor;
  return {{"x"_L1, 0},
          {"y"_L1, top},
          {"width"_L1, size_.width()},
          {"height"_L1, height},
          {"scale"_L1, factor}};
}

/// Asks for the next strip while the last ones come in and are packed.
void DocumentPicture::request() {
  if (ended_ || engineIsBusy_ || asked_ >= size_.height()) return;
  if (pipeline_->waiting() >= mostWaiting) return;
  const double height = qMin(stripHeight(), size_.height() - asked_);
  const QJsonObject parameters{{"format"_L1, u"png"_s},
                               {"optimizeForSpeed"_L1, true},
                               {"captureBeyondViewport"_L1, painted_ == web::Painted::Viewport},
                               {"clip"_L1, clip(asked_, height)}};
  asked_ += height;
  engineIsBusy_ = true;
  const auto self = shared_from_this();
  document_->page()->sendForData(u"Page.captureScreenshot"_s, parameters,
                                 {"data", [self, strip = asked_] { self->goOn(strip); }},
                                 [self, strip = asked_](Result<web::DataReply> reply) {
                                   self->take(strip, std::move(reply));
                                 });
}

/// The engine has made the strip that ends at `bottom`. Taking two at once would mix them up.
void DocumentPicture::goOn(double bottom) {
  if (bottom != asked_) return;
  engineIsBusy_ = false;
  request();
}

void DocumentPicture::take(double bottom, Result<web::DataReply> reply) {
  if (ended_) return;
  if (!reply) return end(tl::unexpected(reply.error()));
  const int rows = deviceRow(bottom) - deviceRow(taken_);
  pipeline_->add(std::move(reply->data), {devicePixels_.width(), rows});
  taken_ = bottom;
  if (taken_ >= size_.height()) return afterLastStrip();
  goOn(bottom);
}

/// Being pictured can change a page's height.
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
  measured_ && pipeline_->waiting() == 0 ? finish() : request();
}

/// A browser that does not know our setting gives white outside the viewport.
bool DocumentPicture::isCutOff() const {
  return painted_ == web::Painted::WholeDocument && watch_->outsideIsBlank();
}

void DocumentPicture::finish() {
  if (!isCutOff()) return end(CapturedPicture{devicePixels_, size_});
  painted_ = web::Painted::Viewport;
  begin(size_);
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
