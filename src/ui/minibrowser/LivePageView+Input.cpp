#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QStyleHints>
#include <QWheelEvent>

#include "ui/minibrowser/LivePageView.h"
#include "ui/minibrowser/PageMenu.h"

using namespace Qt::StringLiterals;

namespace {

constexpr double unitsPerNotch = 120;
constexpr double pixelsPerLine = 40;

/// CSS pixels at the natural size; positive is down and right, as pages count.
QPointF scrollDistance(const QWheelEvent& event) {
  if (!event.pixelDelta().isNull()) return -QPointF(event.pixelDelta());
  const double pixelsPerNotch = QApplication::wheelScrollLines() * pixelsPerLine;
  return -QPointF(event.angleDelta()) / unitsPerNotch * pixelsPerNotch;
}

web::KeyInput keyInput(const QKeyEvent& event, web::KeyInput::Type type) {
  using Repeat = web::KeyInput::Repeat;
  return {type, event.key(), event.text(), event.modifiers(),
          event.isAutoRepeat() ? Repeat::Repeated : Repeat::First};
}

}  // namespace

/// Single keys would otherwise trigger shortcuts of the window while the user types into the page.
bool LivePageView::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<QKeyEvent&>(*event);
    const auto modifiers = key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    const bool types = modifiers == Qt::NoModifier && !key.text().isEmpty();
    if (types || key.matches(QKeySequence::Copy) || key.matches(QKeySequence::Cut) ||
        key.matches(QKeySequence::Paste)) {
      event->accept();
      return true;
    }
  }
  return QWidget::event(event);
}

void LivePageView::send(QMouseEvent& event, web::MouseInput::Type type) {
  if (!liveView_ || event.button() == Qt::RightButton) return;
  const auto button = type == web::MouseInput::Type::Move ? Qt::NoButton : event.button();
  liveView_->send(web::MouseInput{type, event.position(), button, event.buttons(),
                                  event.modifiers(), clickCount_});
}

/// Presses that follow each other at one place count up: two select a word, three a paragraph.
void LivePageView::press(QMouseEvent& event) {
  const QStyleHints& hints = *QApplication::styleHints();
  const bool follows =
      lastPress_.isValid() && !lastPress_.hasExpired(hints.mouseDoubleClickInterval()) &&
      (event.position() - lastPressPosition_).manhattanLength() <= hints.startDragDistance();
  clickCount_ = follows ? clickCount_ % 3 + 1 : 1;
  lastPress_.start();
  lastUse_.start();
  lastPressPosition_ = event.position();
  send(event, web::MouseInput::Type::Press);
}

void LivePageView::mousePressEvent(QMouseEvent* event) {
  press(*event);
}

/// The toolkit sends this in place of every second press.
void LivePageView::mouseDoubleClickEvent(QMouseEvent* event) {
  press(*event);
}

void LivePageView::mouseMoveEvent(QMouseEvent* event) {
  send(*event, web::MouseInput::Type::Move);
}

void LivePageView::mouseReleaseEvent(QMouseEvent* event) {
  lastUse_.start();
  send(*event, web::MouseInput::Type::Release);
}

void LivePageView::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    if (event->angleDelta().y() > 0) zoomIn();
    if (event->angleDelta().y() < 0) zoomOut();
    return;
  }
  QPointF distance = scrollDistance(*event);
  if (event->modifiers().testFlag(Qt::ShiftModifier)) distance = distance.transposed();
  if (liveView_) liveView_->send(web::WheelInput{event->position(), distance, event->modifiers()});
}

bool LivePageView::isClipboardKey(const QKeyEvent& event) {
  if (event.matches(QKeySequence::Copy))
    copy();
  else if (event.matches(QKeySequence::Cut))
    cut();
  else if (event.matches(QKeySequence::Paste))
    paste();
  else
    return false;
  return true;
}

void LivePageView::keyPressEvent(QKeyEvent* event) {
  lastUse_.start();
  if (!isClipboardKey(*event) && liveView_)
    liveView_->send(keyInput(*event, web::KeyInput::Type::Press));
}

void LivePageView::keyReleaseEvent(QKeyEvent* event) {
  if (liveView_) liveView_->send(keyInput(*event, web::KeyInput::Type::Release));
}

void LivePageView::inputMethodEvent(QInputMethodEvent* event) {
  event->accept();
  if (!liveView_) return;
  if (!event->commitString().isEmpty()) liveView_->insertText(event->commitString());
  const QString text = event->preeditString();
  // Ending a composition that was committed just now would take the text away again.
  if (!text.isEmpty() || (composing_ && event->commitString().isEmpty())) {
    qsizetype cursor = text.size();
    for (const auto& attribute : event->attributes())
      if (attribute.type == QInputMethodEvent::Cursor) cursor = attribute.start;
    liveView_->setComposition(text, int(cursor));
  }
  composing_ = !text.isEmpty();
}

/// Where the caret is not known, candidates appear at the place where the user pressed last.
QVariant LivePageView::inputMethodQuery(Qt::InputMethodQuery query) const {
  using Kind = web::TextInput::Kind;
  if (query == Qt::ImEnabled) return textInput_.kind != Kind::None;
  if (query == Qt::ImHints && textInput_.kind == Kind::Password)
    return int(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
  if (query == Qt::ImCursorRectangle || query == Qt::ImAnchorRectangle)
    return textInput_.caret.isNull() ? QRectF(lastPressPosition_, QSizeF(1, 20)) : textInput_.caret;
  return QWidget::inputMethodQuery(query);
}

void LivePageView::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (liveView_) openPageMenu(*this, event->pos());
}

/// The engine has a clipboard of its own, which other programs do not see.
void LivePageView::copy() {
  if (!liveView_) return;
  liveView_->readSelectedText([](const QString& text) {
    if (!text.isEmpty()) QApplication::clipboard()->setText(text);
  });
}

void LivePageView::cut() {
  if (!liveView_) return;
  liveView_->readSelectedText([view = std::weak_ptr(liveView_)](const QString& text) {
    const auto live = view.lock();
    if (!live || text.isEmpty()) return;
    QApplication::clipboard()->setText(text);
    live->deleteSelection();
  });
}

void LivePageView::paste() {
  const QString text = QApplication::clipboard()->text();
  if (liveView_ && !text.isEmpty()) liveView_->insertText(text);
}

void LivePageView::selectAll() {
  if (liveView_) liveView_->page()->evaluate(u"document.execCommand('selectAll')"_s, {});
}
