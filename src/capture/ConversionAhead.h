#pragma once

#include <QUrl>
#include <functional>
#include <future>
#include <memory>

#include "capture/CVURLEntry.h"
#include "platform/base/Error.h"

namespace capture {

/// What a conversion gives: its temporary file, or an error.
struct Conversion {
  QUrl file;
  MaybeError error;
  std::optional<CVConversionFacts> facts;
};

/// A conversion that was begun before anyone has asked for it. Few run at a time, in the order of
/// their making. A file that nobody takes is removed. Any thread.
class ConversionAhead {
 public:
  using Work = std::function<Conversion(const std::shared_ptr<CVPreferences>& preferences)>;

  /// Begins when its turn comes.
  static std::shared_ptr<ConversionAhead> begin(std::shared_ptr<CVPreferences> preferences,
                                                const Work& work);
  ~ConversionAhead();

  /// Whether a conversion with these settings would give the same file.
  bool suits(const CVPreferences& preferences) const;

  /// Waits for the result, which is the caller's then; not on the main thread.
  Conversion take();

 private:
  explicit ConversionAhead(std::shared_ptr<CVPreferences> preferences)
      : preferences_(std::move(preferences)), result_(promise_.get_future()) {}
  void run(const Work& work);

  const std::shared_ptr<CVPreferences> preferences_;
  std::promise<Conversion> promise_;
  std::future<Conversion> result_;
};

}  // namespace capture
