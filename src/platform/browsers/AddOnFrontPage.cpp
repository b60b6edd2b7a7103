#include "platform/browsers/AddOnFrontPage.h"

#include "platform/browsers/AddOnDoor.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace browsers {
namespace {

/// A page with many pictures takes its time to be written down.
constexpr auto captureLimit = 60s;
constexpr auto addressLimit = 5s;

std::optional<QString> textOf(const QJsonObject& answer, const QString& key) {
  const QJsonValue value = answer.value(key);
  return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

}  // namespace

AddOnFrontPage::AddOnFrontPage(std::shared_ptr<AddOnDoor> door) : door_(std::move(door)) {}

bool AddOnFrontPage::isRunning() const {
  return door_->hasBrowser();
}

PageTexts AddOnFrontPage::capture() {
  const auto answer = door_->ask(AddOnDoor::Question::Page, captureLimit);
  std::lock_guard lock(reasonMutex_);
  reason_.reset();
  if (!answer) reason_ = answer.error().localizedDescription;
  if (!answer) return {};
  return {textOf(*answer, u"document"_s), textOf(*answer, u"styles"_s),
          textOf(*answer, u"frames"_s), textOf(*answer, u"address"_s)};
}

std::optional<QString> AddOnFrontPage::address() {
  const auto answer = door_->ask(AddOnDoor::Question::Address, addressLimit);
  return answer ? textOf(*answer, u"address"_s) : std::nullopt;
}

std::optional<QString> AddOnFrontPage::unavailableReason() const {
  std::lock_guard lock(reasonMutex_);
  return reason_;
}

}  // namespace browsers
