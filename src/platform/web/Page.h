#pragma once

#include <QJsonValue>
#include <memory>
#include <optional>
#include <vector>

#include "platform/web/PageConfiguration.h"
#include "platform/web/PageObservers.h"
#include "platform/web/PagePromptDelegate.h"
#include "platform/web/Session.h"

namespace web {

class ChildFrames;
class IsolatedWorld;
class PageLoad;
class PagePrompts;

/// The browser's names for a page.
struct PageTarget {
  QString identifier;
  QString session;
  /// Of a private page: the store of its own, which ends with it. Else empty.
  QString browserContext;
};

using ValueCallback = std::function<void(Result<QJsonValue>)>;

/// What one frame made of a script.
struct FrameValue {
  QUrl url;
  Result<QJsonValue> value;
};
using FrameValuesCallback = std::function<void(std::vector<FrameValue>)>;

/// One page of the engine. Made by Engine::createPage. Main thread only; all callbacks and observer
/// calls come on the main queue, never from within the call that caused them. Dropping the last
/// reference closes the page; callbacks of commands under way are still called, with an error.
class Page : public std::enable_shared_from_this<Page> {
 public:
  /// A page without a target: what is asked of it waits until it is attached.
  static std::shared_ptr<Page> create(const PageConfiguration& configuration);
  ~Page();
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  const PageConfiguration& configuration() const { return configuration_; }
  void addObserver(std::weak_ptr<PageObserver> observer);
  /// Puts what the page asks its user to `delegate`; without one the page gets its answers at once.
  void setPromptDelegate(std::weak_ptr<PagePromptDelegate> delegate);

  /// Replaces a load that is under way.
  void load(const PageRequest& request);
  /// Several viewers of one page give it the same request: the first call loads, an equal call of
  /// another viewer joins that load, a second call of the same viewer loads anew.
  void loadFor(const void* viewer, const PageRequest& request);
  /// Ends the load without a failure; what has come so far stays. "Loading" turns false later.
  void stopLoading();
  /// From now on the main frame keeps its document: refreshes, links and scripts cannot replace it.
  /// The next `load` lifts this.
  void holdDocument();

  /// Address of the document shown, or of the last redirect of the one that is loading. With given
  /// markup the address of the request.
  QUrl currentURL() const;
  QString title() const;
  /// Empty until the main request was answered.
  QString mainResponseMimeType() const;
  double estimatedProgress() const;
  bool isLoading() const;

  /// The value of a script run in the main frame, by value; promises are awaited. Works with
  /// scripts off. A value that JSON does not have (undefined, NaN) is Undefined.
  void evaluate(const QString& script, ValueCallback callback,
                std::chrono::milliseconds timeout = defaultCommandTimeout);
  /// Runs the script in the main frame and all frames within it, those of other processes too; main
  /// frame first. A frame that goes away meanwhile has an error.
  void evaluateInFrames(const QString& script, FrameValuesCallback callback,
                        std::chrono::milliseconds timeout = defaultCommandTimeout);

  /// Runs a script in a world of our own in the main frame, as `Runtime.evaluate` answers. Works
  /// with scripts off. What scripts keep there is there for the next one, until the page loads
  /// another document.
  void evaluateApart(const QString& script, ReplyCallback callback,
                     std::chrono::milliseconds timeout = defaultCommandTimeout);

  /// Any other command of the DevTools protocol, for this page.
  void send(const QString& method, const QJsonObject& parameters = {}, ReplyCallback callback = {},
            std::chrono::milliseconds timeout = defaultCommandTimeout);
  void sendForData(const QString& method, const QJsonObject& parameters, ReplyForm form,
                   DataCallback callback,
                   std::chrono::milliseconds timeout = defaultCommandTimeout);
  [[nodiscard]] Subscription addEventHandler(const QString& method, EventHandler handler);

  /// The viewport in CSS pixels. The layout follows; pictures have `deviceScaleFactor` pixels per
  /// unit.
  void setViewport(double layoutWidth, double viewportHeight, double deviceScaleFactor);

  void close();
  bool isClosed() const { return session_->isClosed(); }

  PagePrompts& prompts() { return *prompts_; }

  /// Called by the engine, once: the target exists, and its main frame has the target's identifier.
  void attach(std::shared_ptr<Connection> connection, const PageTarget& target);
  /// Asks the browser to end a target.
  static void closeTarget(Connection& connection, const PageTarget& target);
  /// Called by the engine: there is no browser any more, or no page could be made.
  void fail(const Error& reason);
  const QString& targetIdentifier() const { return target_.identifier; }

 private:
  explicit Page(const PageConfiguration& configuration);
  void configure();
  void handleCrash();

  PageConfiguration configuration_;
  std::shared_ptr<Session> session_;
  PageTarget target_;
  PageObservers observers_;
  std::shared_ptr<IsolatedWorld> ownWorld_;
  std::unique_ptr<ChildFrames> childFrames_;
  std::unique_ptr<PagePrompts> prompts_;
  std::unique_ptr<PageLoad> load_;
  std::vector<const void*> viewers_;
  std::optional<PageRequest> viewersRequest_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace web
