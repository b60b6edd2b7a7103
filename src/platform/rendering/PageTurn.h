#pragma once

#include <functional>
#include <memory>

namespace web {
class Page;
}

namespace rendering {

/// The right to change a page for a while. Dropping it lets the next in line go. Main thread only.
class PageTurn {
 public:
  using Start = std::function<void(std::shared_ptr<PageTurn>)>;

  /// Calls `start` when nobody else has a turn on the page: at once, or later on the main queue.
  static void take(const std::shared_ptr<web::Page>& page, Start start);

  explicit PageTurn(const web::Page* page) : page_(page) {}
  ~PageTurn();
  PageTurn(const PageTurn&) = delete;
  PageTurn& operator=(const PageTurn&) = delete;

 private:
  /// A key only; never followed.
  const web::Page* page_;
};

}  // namespace rendering
