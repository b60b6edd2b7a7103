#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/base/Error.h"

namespace web {
class Page;
}

/// Turns a loaded page into pictures and PDFs. Everything here is called on the main thread,
/// returns at once and ends in its callback, once, on the main queue; the page is held until then.
/// Operations on one page take turns: a second one waits for the first. Each puts the page back as
/// it found it after it has answered, so they may follow each other in any order. A page that
/// closes or crashes ends its operations with an error. Lengths are CSS pixels of the page's layout
/// (one CSS pixel is one point) unless they say otherwise.
namespace rendering {

struct SettleOptions {
  /// How long fonts and pictures that are still on their way are waited for.
  std::chrono::milliseconds fontLimit{3000};
  std::chrono::milliseconds pictureLimit{6000};
  /// Ends of the scroll through pages that load their parts when these come into view. A page that
  /// grows without end is followed this far.
  std::chrono::milliseconds scrollLimit{8000};
  int scrollSteps = 200;
};

/// Notes in each document that is loaded from now on whether its scripts wait for places to come
/// into view, so that `settle` walks through such pages only.
void watchObservers(web::Page& page);

/// Brings a loaded page to rest: pictures that load lazily are loaded and decoded, fonts are there,
/// animations show their end (endless ones their unanimated state), reduced motion is asked for,
/// and the page stands at its top. Pictures, fonts and frames that never arrive are given up at the
/// limits, without an error; an error means that the page is gone. Costs two messages where there
/// is nothing to wait for. Works with the page's scripts off. The effects stay.
void settle(const std::shared_ptr<web::Page>& page, const SettleOptions& options,
            std::function<void(MaybeError)> callback);

}  // namespace rendering
