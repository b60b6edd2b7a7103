#include "capture/LoadedPage.h"

#include "platform/dispatch/Dispatch.h"

namespace capture {

std::shared_ptr<web::Page> heldOnAnyThread(std::shared_ptr<web::Page> page) {
  web::Page* const shown = page.get();
  return {shown, [page = std::move(page)](web::Page*) mutable {
            dispatch::mainAsync([page = std::move(page)] {});
          }};
}

}  // namespace capture
