#include "platform/web/DocumentTitle.h"

#include "platform/web/Page.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

/// A page that is busy for longer reports its title late rather than holding back its finish.
constexpr std::chrono::seconds titleTimeout{2};

}  // namespace

DocumentTitle::DocumentTitle(Page& page, Session& session, PageObservers& observers)
    : page_(page), session_(session), observers_(observers) {}

void DocumentTitle::clear() {
  text_.clear();
  ++document_;
}

/// The script value decides: what the browser calls a target's title is its address where it has
/// none.
void DocumentTitle::read(std::function<void()> then) {
  const QJsonObject parameters{{u"expression"_s, u"document.title"_s}, {u"returnByValue"_s, true}};
  session_.send(
      u"Runtime.evaluate"_s, parameters,
      [this, weak = page_.weak_from_this(), then = std::move(then),
       document = document_](const Result<QJsonObject>& reply) {
        const auto page = weak.lock();
        if (!page || document != document_) return;
        take(reply);
        if (then) then();
      },
      titleTimeout);
}

void DocumentTitle::take(const Result<QJsonObject>& reply) {
  const QString title = reply ? (*reply)[u"result"][u"value"].toString() : QString();
  if (title.isEmpty() || title == text_) return;
  text_ = title;
  observers_.notify(&PageObserver::pageReceivedTitle, page_, text_);
}

}  // namespace web
