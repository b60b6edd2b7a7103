#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/web/PageObserver.h"

namespace web {

/// The observers of one page, held weakly.
class PageObservers {
 public:
  void add(std::weak_ptr<PageObserver> observer) { observers_.push_back(std::move(observer)); }

  /// Calls `operation` of each observer. An observer may add or drop observers and the page itself.
  template <class... Parameters, class... Arguments>
  void notify(void (PageObserver::*operation)(Page&, Parameters...), Page& page,
              const Arguments&... arguments) {
    std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
    const auto observers = observers_;
    for (const auto& weak : observers)
      if (const auto observer = weak.lock()) (observer.get()->*operation)(page, arguments...);
  }

 private:
  std::vector<std::weak_ptr<PageObserver>> observers_;
};

}  // namespace web
