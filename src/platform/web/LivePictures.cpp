#include "platform/web/LivePictures.h"

#include <cmath>

#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr int pictureQuality = 80;
constexpr int sharpPictureQuality = 90;
constexpr std::chrono::milliseconds restBeforeSharpPicture{120};
/// A key that comes while the browser takes a sharp picture shows a tenth of a second late, so
/// there is none between the keys of somebody who types.
constexpr std::chrono::milliseconds restWhileTyping{600};
constexpr std::chrono::seconds sharpPictureTimeout{3};

}  // namespace

std::shared_ptr<LivePictures> LivePictures::create(std::shared_ptr<Page> page, Receiver receiver) {
  std::shared_ptr<LivePictures> pictures(new LivePictures(std::move(page), std::move(receiver)));
  pictures->subscribe();
  return pictures;
}

LivePictures::LivePictures(std::shared_ptr<Page> page, Receiver receiver)
    : page_(std::move(page)),
      receiver_(std::move(receiver)),
      viewport_(page_->configuration().layoutWidth, page_->configuration().viewportHeight) {}

LivePictures::~LivePictures() {
  stop();
}

void LivePictures::subscribe() {
  pictures_ = page_->addEventHandler(u"Page.screencastFrame"_s,
                                     [weak = weak_from_this()](const QJsonObject& event) {
                                       if (const auto self = weak.lock())
                                         self->handlePicture(event);
                                     });
}

void LivePictures::setViewport(const QSizeF& size, double scale) {
  viewport_ = size;
  scale_ = scale;
  applySize();
}

/// When it has taken a sharp picture the browser gives the page back the size that it had before:
/// another size waits until then.
void LivePictures::applySize() {
  sizeWaits_ = takingSharpPicture_;
  if (sizeWaits_) return;
  page_->setViewport(viewport_.width(), viewport_.height(), scale_);
  if (!running_) return;
  startScreencast();
  // A page at rest shows nothing of its new size by itself.
  requestPictureAtRest();
}

void LivePictures::start() {
  if (std::exchange(running_, true)) return;
  applySize();
}

/// Where pictures run already the browser refuses, and they run on. Ended and begun anew at once,
/// they may stop for good.
void LivePictures::startScreencast() {
  lastPicture_.clear();
  page_->send(u"Page.startScreencast"_s,
              {{u"format"_s, u"jpeg"_s}, {u"quality"_s, pictureQuality}});
}

void LivePictures::stop() {
  if (std::exchange(running_, false)) page_->send(u"Page.stopScreencast"_s);
}

/// A page in a new process makes no pictures until it is asked again, and a picture that was asked
/// of the old one may never come.
void LivePictures::documentReplaced() {
  ++document_;
  endSharpPicture();
  if (running_) startScreencast();
}

void LivePictures::handlePicture(const QJsonObject& event) {
  page_->send(u"Page.screencastFrameAck"_s, {{u"sessionId"_s, event[u"sessionId"]}});
  if (!running_) return;
  const QByteArray picture = QByteArray::fromBase64(event[u"data"].toString().toLatin1());
  // While it takes a sharp picture the browser changes the page's size, and afterwards it sends the
  // same picture once more.
  if (event[u"metadata"][u"deviceWidth"].toInt() != std::lround(viewport_.width()) ||
      picture == lastPicture_)
    return;
  lastPicture_ = picture;
  decode(picture);
  if (scale_ != 1) requestPictureAtRest();
}

void LivePictures::requestPictureAtRest() {
  const bool types = lastKey_.isValid() && !lastKey_.hasExpired(restWhileTyping.count());
  const auto rest = types ? restWhileTyping : restBeforeSharpPicture;
  restTimer_ = dispatch::Timer::after(rest, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->requestSharpPicture();
  });
}

/// One at a time: two that overlap mistake each other's sizes for the page's.
void LivePictures::requestSharpPicture() {
  if (takingSharpPicture_) return requestPictureAtRest();
  takingSharpPicture_ = true;
  page_->sendForData(
      u"Page.captureScreenshot"_s, {{u"format"_s, u"jpeg"_s}, {u"quality"_s, sharpPictureQuality}},
      {"data", {}},
      [weak = weak_from_this(), current = lastPicture_,
       document = document_](const Result<DataReply>& reply) {
        const auto self = weak.lock();
        if (!self || self->document_ != document) return;
        // Otherwise the page has moved on meanwhile.
        if (self->endSharpPicture() && reply && self->lastPicture_ == current)
          self->decode(reply->data);
      },
      sharpPictureTimeout);
}

/// False when another size was waiting, for which the picture was not made.
bool LivePictures::endSharpPicture() {
  takingSharpPicture_ = false;
  const bool isOfThisSize = !sizeWaits_;
  if (sizeWaits_) applySize();
  return isOfThisSize;
}

void LivePictures::decode(const QByteArray& jpeg) {
  waitingPicture_ = jpeg;
  if (!decoding_) decodeNext();
}

/// One picture is decoded at a time, off the main thread; of those that come meanwhile the newest
/// counts.
void LivePictures::decodeNext() {
  decoding_ = true;
  dispatch::globalAsync(dispatch::Priority::High,
                        [weak = weak_from_this(), jpeg = std::exchange(waitingPicture_, {})] {
                          const QImage picture = QImage::fromData(jpeg, "JPEG");
                          dispatch::mainAsync([weak, picture] {
                            if (const auto self = weak.lock()) self->showPicture(picture);
                          });
                        });
}

void LivePictures::showPicture(const QImage& picture) {
  decoding_ = false;
  if (!waitingPicture_.isEmpty()) decodeNext();
  if (running_ && !picture.isNull()) receiver_(picture);
}

}  // namespace web
