#include "ui/minibrowser/LivePageView.h"

#include <QAccessible>
#include <QPainter>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array zoomSteps{0.25, 0.33, 0.5,  0.67, 0.75, 0.8, 0.9, 1.0, 1.1,
                               1.25, 1.5,  1.75, 2.0,  2.5,  3.0, 4.0, 5.0};

}  // namespace

/// The page holds its delegate weakly and calls it from the main queue, where the widget may be
/// gone already; so a shared object stands between the two.
class LivePageView::Bridge : public web::LiveViewDelegate {
 public:
  explicit Bridge(LivePageView& widget) : widget_(widget) {}

  void liveViewReceivedPicture(web::LiveView&, const QImage& picture) override {
    widget_.picture_ = picture;
    widget_.update();
  }
  void liveViewChangedCursor(web::LiveView&, Qt::CursorShape shape) override {
    widget_.setCursor(shape);
  }
  void liveViewChangedTextInput(web::LiveView&, const web::TextInput& input) override {
    widget_.textInput_ = input;
    widget_.updateMicroFocus();
  }

 private:
  LivePageView& widget_;
};

LivePageView::LivePageView(QWidget* parent)
    : QWidget(parent), bridge_(std::make_shared<Bridge>(*this)) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAttribute(Qt::WA_InputMethodEnabled);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

LivePageView::~LivePageView() = default;

void LivePageView::setPage(const std::shared_ptr<web::Page>& page) {
  liveView_ = web::LiveView::create(page);
  liveView_->setDelegate(bridge_);
  liveView_->setZoom(zoom_);
  picture_ = {};
  composing_ = false;
  textInput_ = {};
  applySize();
  if (isVisible()) liveView_->start();
  update();
}

void LivePageView::applySize() {
  devicePixelRatio_ = devicePixelRatioF();
  if (liveView_) liveView_->setSize(size(), devicePixelRatio_);
}

void LivePageView::setZoom(double zoom) {
  zoom_ = zoom;
  if (liveView_) liveView_->setZoom(zoom);
}

void LivePageView::zoomIn() {
  const auto* next = std::upper_bound(zoomSteps.begin(), zoomSteps.end(), zoom_);
  if (next != zoomSteps.end()) setZoom(*next);
}

void LivePageView::zoomOut() {
  const auto* next = std::lower_bound(zoomSteps.begin(), zoomSteps.end(), zoom_);
  if (next != zoomSteps.begin()) setZoom(*std::prev(next));
}

void LivePageView::resetZoom() {
  setZoom(1);
}

bool LivePageView::wasUsedWithin(std::chrono::milliseconds time) const {
  return lastUse_.isValid() && !lastUse_.hasExpired(time.count());
}

/// A picture made for another size is stretched until the next one comes.
void LivePageView::paintEvent(QPaintEvent*) {
  if (devicePixelRatio_ != devicePixelRatioF()) applySize();  // the window moved to another screen
  QPainter painter(this);
  if (picture_.isNull()) return painter.fillRect(rect(), Qt::white);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(QRectF(rect()), picture_);
}

void LivePageView::resizeEvent(QResizeEvent*) {
  applySize();
}

void LivePageView::showEvent(QShowEvent*) {
  if (liveView_) liveView_->start();
}

void LivePageView::hideEvent(QHideEvent*) {
  if (liveView_) liveView_->stop();
}
