#pragma once

#include <QImage>
#include <QSizeF>
#include <QString>
#include <deque>
#include <memory>
#include <vector>

#include "platform/web/LiveInput.h"
#include "platform/web/LivePictures.h"
#include "platform/web/Page.h"
#include "platform/web/TextInput.h"

namespace web {

class LiveView;

/// Told what a live view shows. Called on the main queue.
class LiveViewDelegate {
 public:
  virtual ~LiveViewDelegate() = default;

  /// The page as it looks now, to be stretched over the whole area. Pictures are quick ones while
  /// the page changes and sharp when it has come to rest (LivePictures.h).
  virtual void liveViewReceivedPicture(LiveView&, const QImage&) {}
  virtual void liveViewChangedCursor(LiveView&, Qt::CursorShape) {}
  /// The caret is in points of the area, as input is.
  virtual void liveViewChangedTextInput(LiveView&, const TextInput&) {}
};

/// A page as its user sees and operates it: pictures out, input in. What the page asks its user
/// goes to the page's prompt delegate. Main thread only.
class LiveView : public PageObserver, public std::enable_shared_from_this<LiveView> {
 public:
  static std::shared_ptr<LiveView> create(std::shared_ptr<Page> page);
  ~LiveView() override;

  const std::shared_ptr<Page>& page() const { return page_; }
  void setDelegate(std::weak_ptr<LiveViewDelegate> delegate) { delegate_ = std::move(delegate); }

  /// Size of the area that shows the page, in points of the screen.
  void setSize(const QSizeF& size, double devicePixelRatio);
  /// 1 is the natural size. The page is laid out anew: at 2 it has half the width.
  void setZoom(double zoom);
  double zoom() const { return zoom_; }

  /// Pictures come from now on, as often as the page changes.
  void start();
  void stop();

  /// Positions of input are points of the area; they are translated to the page's pixels here.
  /// Input keeps its order.
  void send(MouseInput input);
  void send(WheelInput input);
  void send(const KeyInput& input);
  /// Text that does not come from a key: pasted, or finished by an input method.
  void insertText(const QString& text);
  /// The unfinished text of an input method; the cursor is at `cursor`, in UTF-16 units. Empty ends
  /// it.
  void setComposition(const QString& text, int cursor);
  /// The text that is selected in the page's main frame, after the input so far; empty when there
  /// is none.
  void readSelectedText(std::function<void(const QString&)> callback);
  /// Cuts the selection out, after `readSelectedText`.
  void deleteSelection();

  /// Makes the page accept certificates that cannot be trusted, at its user's own risk, until it is
  /// closed.
  void acceptAnyCertificate();

  /// Forgets the cookies of the page's profile and what sites have stored in it, for all pages that
  /// share it.
  void clearCookies();

  void pageCommittedLoad(Page&, const Frame&) override;
  void pageFinishedLoad(Page&, const Frame&) override;

 private:
  struct HeldInput {
    QString method;
    QJsonObject parameters;
  };

  explicit LiveView(std::shared_ptr<Page> page);
  void begin();
  void applySize();
  void deliver(const QString& method, const QJsonObject& parameters);
  void press(const MouseInput& input);
  void openList(ChoiceRequest choice);
  void flushInput();
  void sendInput(const HeldInput& input);
  void readCursor(const QPointF& position);
  void readCaret();
  /// Runs the work when all input so far has reached the page.
  void afterInput(std::function<void()> work);
  void runAfterInput();

  std::shared_ptr<Page> page_;
  std::weak_ptr<LiveViewDelegate> delegate_;
  QSizeF size_;
  double devicePixelRatio_ = 1;
  double zoom_ = 1;
  std::shared_ptr<LivePictures> pictures_;

  /// Input that waits until it is known whether a press opened a list.
  std::deque<HeldInput> held_;
  bool holding_ = false;
  int inputUnderWay_ = 0;
  std::vector<std::function<void()>> afterInput_;
  bool swallowRelease_ = false;

  std::optional<QPointF> cursorPosition_;
  bool readingCursor_ = false;
  Qt::CursorShape cursor_ = Qt::ArrowCursor;
  enum class Reading { Idle, UnderWay, Again } readingCaret_ = Reading::Idle;
  TextInput textInput_;
};

}  // namespace web
