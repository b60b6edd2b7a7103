#include "platform/rendering/PageTurn.h"

#include <QHash>
#include <deque>

#include "platform/dispatch/Dispatch.h"

namespace rendering {
namespace {

/// A page with an entry is taken; the entry holds those who wait. Whoever waits holds the page
/// through its callback, so the key cannot become another page's.
QHash<const web::Page*, std::deque<PageTurn::Start>>& lines() {
  static QHash<const web::Page*, std::deque<PageTurn::Start>> waiting;
  return waiting;
}

}  // namespace

void PageTurn::take(const std::shared_ptr<web::Page>& page, Start start) {
  const auto line = lines().find(page.get());
  if (line != lines().end()) {
    line->push_back([page, start = std::move(start)](auto turn) { start(std::move(turn)); });
    return;
  }
  lines().insert(page.get(), {});
  start(std::make_shared<PageTurn>(page.get()));
}

PageTurn::~PageTurn() {
  const auto line = lines().find(page_);
  if (line->empty()) {
    lines().erase(line);
    return;
  }
  Start next = std::move(line->front());
  line->pop_front();
  // Later, so that whoever ends its turn has returned before the next begins.
  dispatch::mainAsync(
      [next = std::move(next), page = page_] { next(std::make_shared<PageTurn>(page)); });
}

}  // namespace rendering
