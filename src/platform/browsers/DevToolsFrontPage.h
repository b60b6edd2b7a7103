#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "platform/base/Error.h"
#include "platform/browsers/DevToolsEndpoint.h"
#include "platform/browsers/FrontPage.h"

namespace desktop {
class RunningApplications;
}

namespace browsers {

class DevToolsConnection;

/// Chrome or another browser of its family, where its user has opened it to the DevTools protocol.
/// One connection is kept for as long as the browser runs: some browsers ask their user for leave
/// at each new one.
class DevToolsFrontPage : public FrontPage {
 public:
  /// `permissionLimit` is how long the browser's user is given to answer its question.
  explicit DevToolsFrontPage(std::shared_ptr<desktop::RunningApplications> applications,
                             std::chrono::milliseconds permissionLimit = std::chrono::seconds(45));
  ~DevToolsFrontPage() override;

  bool isRunning() const override;
  PageTexts capture() override;
  std::optional<QString> source() override { return std::nullopt; }
  /// Does not ask again at a browser whose user has not let us in: addresses are asked for in
  /// passing.
  std::optional<QString> address() override;
  std::optional<QString> unavailableReason() const override;

 private:
  enum class Asking { Again, NotAgain };

  Result<std::shared_ptr<DevToolsConnection>> connection(Asking asking);
  Result<std::shared_ptr<DevToolsConnection>> connectTo(const DevToolsEndpoint& endpoint,
                                                        Asking asking);
  template <class Value>
  Result<Value> ask(Asking asking, Result<Value> (*question)(DevToolsConnection&));
  void setReason(const MaybeError& error);

  const std::shared_ptr<desktop::RunningApplications> applications_;
  const std::chrono::milliseconds permissionLimit_;

  /// Guards the conversation: held while the browser is asked.
  std::mutex conversationMutex_;
  std::shared_ptr<DevToolsConnection> connection_;
  std::optional<DevToolsEndpoint> notAllowed_;

  mutable std::mutex reasonMutex_;
  std::optional<QString> reason_;
};

}  // namespace browsers
