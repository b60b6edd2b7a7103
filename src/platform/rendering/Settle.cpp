#include "platform/rendering/Settle.h"

#include <QElapsedTimer>
#include <QJsonObject>

#include "platform/dispatch/Timer.h"
#include "platform/rendering/PageScript.h"
#include "platform/rendering/PageScriptText.h"
#include "platform/rendering/PageTurn.h"
#include "platform/web/Page.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto pollInterval = 20ms;

/// One run of `settle`, kept by the callbacks of its steps.
class SettleRun : public std::enable_shared_from_this<SettleRun> {
 public:
  SettleRun(std::shared_ptr<web::Page> page, std::shared_ptr<PageTurn> turn, SettleOptions options,
            std::function<void(MaybeError)> callback)
      : page_(std::move(page)),
        turn_(std::move(turn)),
        options_(options),
        callback_(std::move(callback)) {}

  void start();

 private:
  using Step = void (SettleRun::*)(const QJsonObject&);

  void call(const QString& function, Step next);
  void afterBegin(const QJsonObject& state);
  void beginScroll();
  void scrollStep();
  void endScroll();
  void afterScroll(const QJsonObject&);
  void check(const QJsonObject& state);
  bool mustWait(const QJsonObject& state) const;
  void finishMotion(const QJsonObject& state);
  void finishFrames();
  void end(MaybeError error);

  std::shared_ptr<web::Page> page_;
  std::shared_ptr<PageTurn> turn_;
  SettleOptions options_;
  std::function<void(MaybeError)> callback_;
  std::unique_ptr<dispatch::Timer> poll_;
  QElapsedTimer elapsed_;
  int steps_ = 0;
  bool hasForeignFrames_ = false;
};

void askForReducedMotion(web::Page& page) {
  const QJsonObject feature{{"name"_L1, u"prefers-reduced-motion"_s}, {"value"_L1, u"reduce"_s}};
  page.send(u"Emulation.setEmulatedMedia"_s,
            {{"media"_L1, u"screen"_s}, {"features"_L1, QJsonArray{feature}}});
}

void SettleRun::start() {
  elapsed_.start();
  askForReducedMotion(*page_);
  call(u"settleBegin"_s, &SettleRun::afterBegin);
}

void SettleRun::call(const QString& function, Step next) {
  callPageScript(page_, function, {}, [self = shared_from_this(), next](Result<QJsonValue> value) {
    if (!value) return self->end(value.error());
    // A step may answer with a value that is no object; the next one then sees an empty one.
    ((*self).*next)(value->toObject());
  });
}

void SettleRun::afterBegin(const QJsonObject& state) {
  // Without scripts nothing but the loading attribute can make a picture wait for its place.
  const bool scripted = page_->configuration().scripts == web::Scripts::Enabled;
  const bool unseen = scripted && state.value("unseen"_L1).toBool();
  if (!unseen) return check(state);
  state.value("waitsToBeSeen"_L1).toBool() ? beginScroll() : call(u"noteSeen"_s, &SettleRun::check);
}

void SettleRun::beginScroll() {
  callPageScript(page_, u"scrollBegin"_s, {},
                 [self = shared_from_this()](Result<QJsonValue> value) {
                   value ? self->scrollStep() : self->end(value.error());
                 });
}

void SettleRun::scrollStep() {
  const bool enough =
      ++steps_ > options_.scrollSteps || elapsed_.hasExpired(options_.scrollLimit.count());
  if (enough) return endScroll();
  callPageScript(
      page_, u"scrollStep"_s, {},
      [self = shared_from_this()](const Result<QJsonValue>& more) {
        // A step that gets no frame ends the walk, not the conversion.
        more && more->toBool() ? self->scrollStep() : self->endScroll();
      },
      5s);
}

void SettleRun::endScroll() {
  call(u"scrollEnd"_s, &SettleRun::afterScroll);
}

void SettleRun::afterScroll(const QJsonObject&) {
  elapsed_.restart();
  call(u"settleState"_s, &SettleRun::check);
}

bool SettleRun::mustWait(const QJsonObject& state) const {
  const bool pictures = state.value("pictures"_L1).toInt() > 0;
  const bool fonts = state.value("fonts"_L1).toInt() > 0;
  return (pictures && !elapsed_.hasExpired(options_.pictureLimit.count())) ||
         (fonts && !elapsed_.hasExpired(options_.fontLimit.count()));
}

void SettleRun::check(const QJsonObject& state) {
  if (!mustWait(state)) return finishMotion(state);
  poll_ = dispatch::Timer::after(pollInterval, [self = shared_from_this()] {
    self->call(u"settleState"_s, &SettleRun::check);
  });
}

void SettleRun::finishMotion(const QJsonObject& state) {
  poll_.reset();
  hasForeignFrames_ = state.value("foreignFrames"_L1).toInt() > 0;
  callPageScript(page_, u"finishMotion"_s, {},
                 [self = shared_from_this()](const Result<QJsonValue>& value) {
                   if (!value) return self->end(value.error());
                   self->hasForeignFrames_ ? self->finishFrames() : self->end({});
                 });
}

/// Frames of other origins run in other processes, out of reach of the page's own scripts.
void SettleRun::finishFrames() {
  page_->evaluateInFrames(
      frameScriptText(), [self = shared_from_this()](const auto&) { self->end({}); }, 3s);
}

void SettleRun::end(MaybeError error) {
  poll_.reset();
  turn_.reset();
  callback_(std::move(error));
}

}  // namespace

void watchObservers(web::Page& page) {
  if (page.configuration().scripts == web::Scripts::Disabled) return;
  page.send(u"Page.addScriptToEvaluateOnNewDocument"_s, {{"source"_L1, observersScriptText()}});
}

void settle(const std::shared_ptr<web::Page>& page, const SettleOptions& options,
            std::function<void(MaybeError)> callback) {
  PageTurn::take(page, [page, options, callback = std::move(callback)](auto turn) {
    std::make_shared<SettleRun>(page, std::move(turn), options, callback)->start();
  });
}

}  // namespace rendering
