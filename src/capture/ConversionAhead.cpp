#include "capture/ConversionAhead.h"

#include <QFile>
#include <deque>
#include <mutex>

#include "platform/dispatch/Dispatch.h"
#include "settings/CVPreferences.h"

namespace capture {
namespace {

/// While the engine pictures one page, another one is laid out or encoded.
constexpr int mostAtOnce = 2;

/// Lets few pieces of work run at a time, first come, first served.
class Line {
 public:
  void add(dispatch::Work work) {
    std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(work));
    startNext();
  }

 private:
  void startNext() {
    if (running_ == mostAtOnce || waiting_.empty()) return;
    ++running_;
    dispatch::globalAsync(dispatch::Priority::High,
                          [this, work = std::move(waiting_.front())]() mutable {
                            work();
                            work = nullptr;
                            std::lock_guard lock(mutex_);
                            --running_;
                            startNext();
                          });
    waiting_.pop_front();
  }

  std::mutex mutex_;
  std::deque<dispatch::Work> waiting_;
  int running_ = 0;
};

Line& line() {
  static Line shared;
  return shared;
}

}  // namespace

std::shared_ptr<ConversionAhead> ConversionAhead::begin(std::shared_ptr<CVPreferences> preferences,
                                                        const Work& work) {
  std::shared_ptr<ConversionAhead> ahead(new ConversionAhead(std::move(preferences)));
  line().add([ahead, work] { ahead->run(work); });
  return ahead;
}

ConversionAhead::~ConversionAhead() {
  const bool untaken =
      result_.valid() && result_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  if (untaken) QFile::remove(result_.get().file.toLocalFile());
}

void ConversionAhead::run(const Work& work) {
  promise_.set_value(work(preferences_));
}

bool ConversionAhead::suits(const CVPreferences& preferences) const {
  return !preferences.usePagination() && preferences.format() == preferences_->format() &&
         preferences.conversionMode() == preferences_->conversionMode();
}

Conversion ConversionAhead::take() {
  return result_.get();
}

}  // namespace capture
