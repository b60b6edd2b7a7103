#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QWidget>
#include <chrono>
#include <memory>

#include "platform/web/LiveView.h"

/// Shows a page of the engine and hands it what the user does: pointer, wheel, keys, input methods.
/// The page is laid out as wide as the widget. Main thread.
class LivePageView : public QWidget {
  Q_OBJECT

 public:
  explicit LivePageView(QWidget* parent = nullptr);
  ~LivePageView() override;

  /// Shows another page from now on; the zoom stays.
  void setPage(const std::shared_ptr<web::Page>& page);
  /// Empty before the first page.
  const std::shared_ptr<web::LiveView>& liveView() const { return liveView_; }

  double zoom() const { return zoom_; }
  /// One step of the usual percentages.
  void zoomIn();
  void zoomOut();
  void resetZoom();

  void copy();
  void cut();
  void paste();
  void selectAll();

  /// Tells a window that the user asked for from one that a script opens by itself.
  bool wasUsedWithin(std::chrono::milliseconds time) const;

 Q_SIGNALS:
  /// Chosen in the page's menu.
  void backRequested();
  void reloadRequested();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  /// The tabulator goes through the page's own fields.
  bool focusNextPrevChild(bool) override { return false; }

 private:
  class Bridge;

  void setZoom(double zoom);
  void applySize();
  void press(QMouseEvent& event);
  void send(QMouseEvent& event, web::MouseInput::Type type);
  bool isClipboardKey(const QKeyEvent& event);

  std::shared_ptr<Bridge> bridge_;
  std::shared_ptr<web::LiveView> liveView_;
  QImage picture_;
  double zoom_ = 1;
  double devicePixelRatio_ = 0;

  QElapsedTimer lastUse_;
  QElapsedTimer lastPress_;
  QPointF lastPressPosition_;
  web::TextInput textInput_;
  int clickCount_ = 1;
  bool composing_ = false;
};
