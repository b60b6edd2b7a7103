#pragma once

#include <memory>
#include <vector>

#include "platform/web/PagePromptDelegate.h"
#include "platform/web/Session.h"

namespace web {

/// Puts what a page asks its user to the delegate and takes the answers back to the browser, so
/// that the page never waits for nobody. Part of its page.
class PagePrompts {
 public:
  explicit PagePrompts(Page& page) : page_(page) {}

  void setDelegate(std::weak_ptr<PagePromptDelegate> delegate) { delegate_ = std::move(delegate); }
  void observe(const std::shared_ptr<Session>& session);
  void askCredentials(const CredentialsRequest& request,
                      const AnswerHandler<std::optional<Credentials>>& answer);
  void askChoice(const ChoiceRequest& request, const AnswerHandler<std::optional<int>>& answer);

 private:
  using Handler = void (PagePrompts::*)(const std::shared_ptr<Session>&, const QJsonObject&);

  void on(const std::shared_ptr<Session>& session, const QString& method, Handler handler);
  void askDialog(const std::shared_ptr<Session>& session, const QJsonObject& event);
  void askFiles(const std::shared_ptr<Session>& session, const QJsonObject& event);
  void askWindow(const std::shared_ptr<Session>& session, const QJsonObject& event);
  std::shared_ptr<PagePromptDelegate> delegate() const;

  Page& page_;
  std::weak_ptr<PagePromptDelegate> delegate_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace web
