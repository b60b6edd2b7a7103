#include "platform/web/LiveView.h"

#include <algorithm>

#include "platform/web/PageCursor.h"
#include "platform/web/PagePrompts.h"
#include "platform/web/SelectPopup.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr double smallestZoom = 0.25;
constexpr double largestZoom = 5;

}  // namespace

std::shared_ptr<LiveView> LiveView::create(std::shared_ptr<Page> page) {
  std::shared_ptr<LiveView> view(new LiveView(std::move(page)));
  view->begin();
  return view;
}

LiveView::LiveView(std::shared_ptr<Page> page)
    : page_(std::move(page)),
      size_(page_->configuration().layoutWidth, page_->configuration().viewportHeight) {}

LiveView::~LiveView() = default;

void LiveView::begin() {
  page_->addObserver(weak_from_this());
  pictures_ = LivePictures::create(page_, [weak = weak_from_this()](const QImage& picture) {
    const auto self = weak.lock();
    const auto delegate = self ? self->delegate_.lock() : nullptr;
    if (delegate) delegate->liveViewReceivedPicture(*self, picture);
  });
}

void LiveView::start() {
  pictures_->start();
}

void LiveView::stop() {
  pictures_->stop();
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

void LiveView::applySize() {
  pictures_->setViewport(size_ / zoom_, devicePixelRatio_ * zoom_);
}

void LiveView::pageCommittedLoad(Page&, const Frame& frame) {
  if (frame.isMain()) pictures_->documentReplaced();
}

/// A page may give one of its fields the focus.
void LiveView::pageFinishedLoad(Page&, const Frame& frame) {
  if (frame.isMain()) readCaret();
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
  pictures_->keyPressed();
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
  readPageCursor(*page_, *std::exchange(cursorPosition_, std::nullopt),
                 [weak = weak_from_this()](Qt::CursorShape shape) {
                   const auto self = weak.lock();
                   if (!self) return;
                   self->readingCursor_ = false;
                   const auto delegate = self->delegate_.lock();
                   if (std::exchange(self->cursor_, shape) != shape && delegate)
                     delegate->liveViewChangedCursor(*self, shape);
                   if (self->cursorPosition_) self->readCursor(*self->cursorPosition_);
                 });
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
