#pragma once

#include <memory>
#include <mutex>

#include "platform/browsers/FrontPage.h"

namespace browsers {

class AddOnDoor;

/// The browser whose add-on is connected to the running program.
class AddOnFrontPage : public FrontPage {
 public:
  explicit AddOnFrontPage(std::shared_ptr<AddOnDoor> door);

  /// Whether a browser is connected.
  bool isRunning() const override;
  PageTexts capture() override;
  std::optional<QString> source() override { return std::nullopt; }
  std::optional<QString> address() override;
  std::optional<QString> unavailableReason() const override;

 private:
  const std::shared_ptr<AddOnDoor> door_;
  mutable std::mutex reasonMutex_;
  std::optional<QString> reason_;
};

}  // namespace browsers
