#include "ui/window/ArrowAnimation.h"

#include <QString>

#include "platform/dispatch/Timer.h"

using namespace Qt::StringLiterals;

namespace ui {
namespace {

constexpr unsigned frames = 15;
constexpr std::chrono::milliseconds interval(100);

}  // namespace

ArrowAnimation::ArrowAnimation(Show show) : show_(std::move(show)) {}

ArrowAnimation::~ArrowAnimation() = default;

void ArrowAnimation::startAnimatingArrow() {
  if (arrowTimer_) stopAnimatingArrow();
  show_(u"arrow-down_01@2X.png"_s);
  arrowTimer_ = dispatch::Timer::every(interval, [this] { updateArrowFrame(); });
}

void ArrowAnimation::stopAnimatingArrow() {
  std::lock_guard lock(mutex_);
  arrowTimer_.reset();
  arrowFrame_ = 0;
}

void ArrowAnimation::updateArrowFrame() {
  show_(u"arrow-down_%1@2x.png"_s.arg(arrowFrame_ + 1, 2, 10, QChar(u'0')));
  std::lock_guard lock(mutex_);
  arrowFrame_ = (arrowFrame_ + 1) % frames;
}

}  // namespace ui
