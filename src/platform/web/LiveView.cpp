#include "platform/web/LiveView.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/dispatch/Dispatch.h"
#include "platform/web/PagePrompts.h"
#include "platform/web/SelectPopup.h"

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
constexpr double smallestZoom = 0.25;
constexpr double largestZoom = 5;
constexpr std::chrono::seconds cursorTimeout{1};

struct CursorName {
  QStringView name;
  Qt::CursorShape shape;
};

/// Names of CSS Basic User Interface Module Level 4, 5.1 'cursor'.
constexpr std::array cursorNames{
    CursorName{u"pointer", Qt::PointingHandCursor},
    CursorName{u"text", Qt::IBeamCursor},
    CursorName{u"vertical-text", Qt::IBeamCursor},
    CursorName{u"wait", Qt::WaitCursor},
    CursorName{u"progress", Qt::BusyCursor},
    CursorName{u"help", Qt::WhatsThisCursor},
    CursorName{u"crosshair", Qt::CrossCursor},
    CursorName{u"cell", Qt::CrossCursor},
    CursorName{u"move", Qt::SizeAllCursor},
    CursorName{u"all-scroll", Qt::SizeAllCursor},
    CursorName{u"not-allowed", Qt::ForbiddenCursor},
    CursorName{u"no-drop", Qt::ForbiddenCursor},
    CursorName{u"grab", Qt::OpenHandCursor},
    CursorName{u"grabbing", Qt::ClosedHandCursor},
    CursorName{u"none", Qt::BlankCursor},
    CursorName{u"copy", Qt::DragCopyCursor},
    CursorName{u"col-resize", Qt::SplitHCursor},
    CursorName{u"row-resize", Qt::SplitVCursor},
    CursorName{u"ew-resize", Qt::SizeHorCursor},
    CursorName{u"e-resize", Qt::SizeHorCursor},
    CursorName{u"w-resize", Qt::SizeHorCursor},
    CursorName{u"ns-resize", Qt::SizeVerCursor},
    CursorName{u"n-resize", Qt::SizeVerCursor},
    CursorName{u"s-resize", Qt::SizeVerCursor},
    CursorName{u"nesw-resize", Qt::SizeBDiagCursor},
    CursorName{u"ne-resize", Qt::SizeBDiagCursor},
    CursorName{u"sw-resize", Qt::SizeBDiagCursor},
    CursorName{u"nwse-resize", Qt::SizeFDiagCursor},
    CursorName{u"nw-resize", Qt::SizeFDiagCursor},
    CursorName{u"se-resize", Qt::SizeFDiagCursor},
};

Qt::CursorShape cursorShape(const QString& name) {
  const auto found = std::find_if(cursorNames.begin(), cursorNames.end(),
                                  [&name](const CursorName& row) { return row.name == name; });
  return found == cursorNames.end() ? Qt::ArrowCursor : found->shape;
}

/// "auto" is what the browser makes of the element: a beam over text, a hand over links.
QString cursorScript(const QPointF& position) {
  return uR"((() => {
    const element = document.elementFromPoint(%1, %2);
    if (!element) return 'default';
    const style = getComputedStyle(element).cursor.split(',').pop().trim();
    if (style !== 'auto') return style;
    if (element.isContentEditable || /^(TEXTAREA)$/.test(element.tagName) ||
        (element.tagName === 'INPUT' && !/^(button|checkbox|color|file|image|radio|range|reset|submit)$/
            .test(element.type))) return 'text';
    if (getComputedStyle(element).userSelect === 'none') return 'default';
    const caret = document.caretRangeFromPoint(%1, %2);
    if (!caret || caret.startContainer.nodeType !== Node.TEXT_NODE) return 'default';
    const range = document.createRange();
    range.selectNodeContents(caret.startContainer);
    const over = [...range.getClientRects()].some(
        box => box.left <= %1 && box.right >= %1 && box.top <= %2 && box.bottom >= %2);
    return over ? 'text' : 'default';
  })())"_s.arg(position.x())
      .arg(position.y());
}

}  // namespace

std::shared_ptr<LiveView> LiveView::create(std::shared_ptr<Page> page) {
  std::shared_ptr<LiveView> view(new LiveView(std::move(page)));
  view->begin();
  return view;
}

LiveView::LiveView(std::shared_ptr<Page> page)
    : page_(std::move(page)),
      size_(page_->configuration().layoutWidth, page_->configuration().viewportHeight) {}

LiveView::~LiveView() {
  stop();
}

void LiveView::begin() {
  page_->addObserver(weak_from_this());
  pictures_ = page_->addEventHandler(u"Page.screencastFrame"_s,
                                     [weak = weak_from_this()](const QJsonObject& event) {
                                       if (const auto self = weak.lock())
                                         self->handlePicture(event);
                                     });
}

void LiveView::setSize(const QSizeF& size, double devicePixelRatio) {
  size_ = size.expandedTo(QSizeF(1, 1));
  devicePixelRatio_ = devicePixelRatio;
  applySize();
}

void LiveView::setZoom(double zoom) {
  zoom_ = std::clamp(zoom, smallestZoom, largestZoom);
  applySize();
}

/// When it has taken a sharp picture the browser gives the page back the size that it had before:
/// another size waits until then.
void LiveView::applySize() {
  sizeWaits_ = takingSharpPicture_;
  if (sizeWaits_) return;
  page_->setViewport(size_.width() / zoom_, size_.height() / zoom_, devicePixelRatio_ * zoom_);
  if (!running_) return;
  startScreencast();
  // A page at rest shows nothing of its new size by itself.
  requestPictureAtRest();
}

int LiveView::viewportWidth() const {
  return static_cast<int>(std::lround(size_.width() / zoom_));
}

void LiveView::start() {
  if (std::exchange(running_, true)) return;
  applySize();
}

/// Where pictures run already the browser refuses, and they run on. Ended and begun anew at once,
/// they may stop for good.
void LiveView::startScreencast() {
  lastPicture_.clear();
  page_->send(u"Page.startScreencast"_s,
              {{u"format"_s, u"jpeg"_s}, {u"quality"_s, pictureQuality}});
}

void LiveView::stop() {
  if (std::exchange(running_, false)) page_->send(u"Page.stopScreencast"_s);
}

/// A page in a new process makes no pictures until it is asked again, and a picture that was asked
/// of the old one may never come.
void LiveView::pageCommittedLoad(Page&, const Frame& frame) {
  if (!frame.isMain()) return;
  ++document_;
  endSharpPicture();
  if (running_) startScreencast();
}

/// A page may give one of its fields the focus.
void LiveView::pageFinishedLoad(Page&, const Frame& frame) {
  if (frame.isMain()) readCaret();
}

void LiveView::handlePicture(const QJsonObject& event) {
  page_->send(u"Page.screencastFrameAck"_s, {{u"sessionId"_s, event[u"sessionId"]}});
  if (!running_) return;
  const QByteArray picture = QByteArray::fromBase64(event[u"data"].toString().toLatin1());
  // While it takes a sharp picture the browser changes the page's size, and afterwards it sends the
  // same picture once more.
  if (event[u"metadata"][u"deviceWidth"].toInt() != viewportWidth() || picture == lastPicture_)
    return;
  lastPicture_ = picture;
  decode(picture);
  if (devicePixelRatio_ * zoom_ != 1) requestPictureAtRest();
}

void LiveView::requestPictureAtRest() {
  const bool types = lastKey_.isValid() && !lastKey_.hasExpired(restWhileTyping.count());
  const auto rest = types ? restWhileTyping : restBeforeSharpPicture;
  restTimer_ = dispatch::Timer::after(rest, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->requestSharpPicture();
  });
}

/// One at a time: two that overlap mistake each other's sizes for the page's.
void LiveView::requestSharpPicture() {
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
bool LiveView::endSharpPicture() {
  takingSharpPicture_ = false;
  const bool isOfThisSize = !sizeWaits_;
  if (sizeWaits_) applySize();
  return isOfThisSize;
}

void LiveView::decode(const QByteArray& jpeg) {
  waitingPicture_ = jpeg;
  if (!decoding_) decodeNext();
}

/// One picture is decoded at a time, off the main thread; of those that come meanwhile the newest
/// counts.
void LiveView::decodeNext() {
  decoding_ = true;
  dispatch::globalAsync(dispatch::Priority::High,
                        [weak = weak_from_this(), jpeg = std::exchange(waitingPicture_, {})] {
                          const QImage picture = QImage::fromData(jpeg, "JPEG");
                          dispatch::mainAsync([weak, picture] {
                            if (const auto self = weak.lock()) self->showPicture(picture);
                          });
                        });
}

void LiveView::showPicture(const QImage& picture) {
  decoding_ = false;
  if (!waitingPicture_.isEmpty()) decodeNext();
  const auto delegate = delegate_.lock();
  if (delegate && running_ && !picture.isNull()) delegate->liveViewReceivedPicture(*this, picture);
}

void LiveView::send(MouseInput input) {
  input.position /= zoom_;
  if (input.type == MouseInput::Type::Press && input.button == Qt::LeftButton) return press(input);
  if (input.type == MouseInput::Type::Release && std::exchange(swallowRelease_, false)) return;
  deliver(u"Input.dispatchMouseEvent"_s, describe(input));
  if (input.type == MouseInput::Type::Move && input.buttons == Qt::NoButton)
    readCursor(input.position);
}

void LiveView::send(WheelInput input) {
  input.position /= zoom_;
  input.delta /= zoom_;
  deliver(u"Input.dispatchMouseEvent"_s, describe(input));
}

void LiveView::send(const KeyInput& input) {
  lastKey_.start();
  deliver(u"Input.dispatchKeyEvent"_s, describe(input));
}

void LiveView::insertText(const QString& text) {
  deliver(u"Input.insertText"_s, {{u"text"_s, text}});
}

void LiveView::setComposition(const QString& text, int cursor) {
  deliver(u"Input.imeSetComposition"_s,
          {{u"text"_s, text}, {u"selectionStart"_s, cursor}, {u"selectionEnd"_s, cursor}});
}

void LiveView::deliver(const QString& method, const QJsonObject& parameters) {
  if (holding_)
    held_.push_back({method, parameters});
  else
    sendInput({method, parameters});
}

/// What the user does moves the caret, all but the mere way of the pointer.
void LiveView::sendInput(const HeldInput& input) {
  const bool isMove = input.parameters[u"type"].toString() == u"mouseMoved";
  ++inputUnderWay_;
  page_->send(input.method, input.parameters, [weak = weak_from_this(), isMove](const auto&) {
    const auto self = weak.lock();
    if (!self) return;
    if (!isMove) self->readCaret();
    --self->inputUnderWay_;
    self->runAfterInput();
  });
}

/// The page answers questions sooner than it takes in input that was sent before them.
void LiveView::afterInput(std::function<void()> work) {
  afterInput_.push_back(std::move(work));
  runAfterInput();
}

void LiveView::runAfterInput() {
  if (inputUnderWay_ > 0 || holding_) return;
  for (const auto& work : std::exchange(afterInput_, {}))
    work();
}

/// Input that follows waits a moment: were it sent at once, the release would overtake the press.
void LiveView::press(const MouseInput& input) {
  if (holding_) return deliver(u"Input.dispatchMouseEvent"_s, describe(input));
  holding_ = true;
  findSelect(*page_, input.position, [weak = weak_from_this(), input](auto choice) {
    const auto self = weak.lock();
    if (!self) return;
    if (choice)
      self->openList(*choice);
    else
      self->held_.push_front({u"Input.dispatchMouseEvent"_s, describe(input)});
    self->flushInput();
  });
}

/// The page hears nothing of the press, nor of its release.
void LiveView::openList(ChoiceRequest choice) {
  const auto release = std::find_if(held_.begin(), held_.end(), [](const HeldInput& input) {
    return input.parameters[u"type"].toString() == u"mouseReleased";
  });
  if (release == held_.end())
    swallowRelease_ = true;
  else
    held_.erase(release);
  choice.area = QRectF(choice.area.topLeft() * zoom_, choice.area.size() * zoom_);
  page_->prompts().askChoice(choice,
                             [page = std::weak_ptr(page_)](const std::optional<int>& index) {
                               const auto shown = page.lock();
                               if (shown && index) chooseOption(*shown, *index);
                             });
}

void LiveView::flushInput() {
  holding_ = false;
  for (const HeldInput& input : std::exchange(held_, {}))
    sendInput(input);
  runAfterInput();
}

/// Asks one question at a time; the pointer's last place is asked for in the end.
void LiveView::readCursor(const QPointF& position) {
  cursorPosition_ = position;
  if (readingCursor_) return;
  readingCursor_ = true;
  page_->evaluate(
      cursorScript(*std::exchange(cursorPosition_, std::nullopt)),
      [weak = weak_from_this()](const Result<QJsonValue>& name) {
        const auto self = weak.lock();
        if (!self) return;
        self->readingCursor_ = false;
        const Qt::CursorShape shape = cursorShape(name ? name->toString() : QString());
        const auto delegate = self->delegate_.lock();
        if (std::exchange(self->cursor_, shape) != shape && delegate)
          delegate->liveViewChangedCursor(*self, shape);
        if (self->cursorPosition_) self->readCursor(*self->cursorPosition_);
      },
      cursorTimeout);
}

/// Asks one question at a time, and once more when something was done meanwhile.
void LiveView::readCaret() {
  if (readingCaret_ != Reading::Idle) {
    readingCaret_ = Reading::Again;
    return;
  }
  readingCaret_ = Reading::UnderWay;
  readTextInput(*page_, [weak = weak_from_this()](TextInput input) {
    const auto self = weak.lock();
    if (!self) return;
    const bool again = std::exchange(self->readingCaret_, Reading::Idle) == Reading::Again;
    input.caret = {input.caret.topLeft() * self->zoom_, input.caret.size() * self->zoom_};
    const auto delegate = self->delegate_.lock();
    if (std::exchange(self->textInput_, input) != input && delegate)
      delegate->liveViewChangedTextInput(*self, input);
    if (again) self->readCaret();
  });
}

void LiveView::readSelectedText(std::function<void(const QString&)> callback) {
  const auto script =
      uR"((() => {
    const element = document.activeElement;
    if (element && typeof element.selectionStart === 'number' && element.type !== 'password')
      return element.value.slice(element.selectionStart, element.selectionEnd);
    return String(getSelection());
  })())"_s;
  afterInput([page = page_, script, callback = std::move(callback)] {
    page->evaluate(script, [callback](const Result<QJsonValue>& text) {
      callback(text ? text->toString() : QString());
    });
  });
}

void LiveView::deleteSelection() {
  page_->evaluate(u"document.execCommand('delete')"_s, {});
}

void LiveView::acceptAnyCertificate() {
  page_->send(u"Security.setIgnoreCertificateErrors"_s, {{u"ignore"_s, true}});
}

void LiveView::clearCookies() {
  page_->send(u"Network.clearBrowserCookies"_s);
  // Many sites keep a login in their storage. The origin "*" stands for all of them.
  page_->send(u"Storage.clearDataForOrigin"_s,
              {{u"origin"_s, u"*"_s}, {u"storageTypes"_s, u"all"_s}});
}

}  // namespace web
