#pragma once

#include <QByteArray>
#include <QSize>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/base/Error.h"
#include "platform/rendering/PictureReceiver.h"

namespace rendering {

/// Decodes strips and hands their rows to the receiver, a band at a time, on the global queue: what
/// it holds in memory is the packed strips. Main thread only, but for the work itself.
class PicturePipeline : public std::enable_shared_from_this<PicturePipeline> {
 public:
  /// `delivered` is called on the main queue after each strip, or with the first error; after an
  /// error nothing more is delivered.
  PicturePipeline(std::shared_ptr<PictureReceiver> receiver,
                  std::function<void(MaybeError)> delivered);

  void begin(QSize picture);
  /// `png` holds a strip as the engine made it, `size` what it must measure.
  void add(QByteArray png, QSize size);
  /// Drops what has not begun. Any thread.
  void stop();

  /// Strips that were added and not yet taken.
  int waiting() const { return waiting_; }

 private:
  using Job = std::function<MaybeError(PictureReceiver&)>;

  void push(Job job, int strips);
  void work();
  void report(int strips, MaybeError error);

  struct Entry {
    Job job;
    int strips;
  };

  std::shared_ptr<PictureReceiver> receiver_;
  std::function<void(MaybeError)> delivered_;
  int waiting_ = 0;

  std::mutex mutex_;
  std::deque<Entry> jobs_;
  bool working_ = false;
  bool stopped_ = false;
};

}  // namespace rendering
