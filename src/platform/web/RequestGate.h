#pragma once

#include <QByteArray>
#include <QUrl>
#include <memory>
#include <optional>

#include "platform/web/PageConfiguration.h"
#include "platform/web/PagePromptDelegate.h"
#include "platform/web/Session.h"

namespace web {

class MarkupSource;

/// Decides about the requests of one page that must not simply go out: serves given markup, keeps a
/// held document from being replaced, refuses local files. Requests that need no decision are not
/// stopped.
class RequestGate {
 public:
  explicit RequestGate(Session& session);
  ~RequestGate();

  void setMainFrame(const QString& identifier) { mainFrame_ = identifier; }
  /// Sets the rules for a load. Returns the address to navigate to: the request's own, or where
  /// given markup has one that no document can be served at, a stand-in.
  QUrl prepare(const PageRequest& request);
  /// From now on the main frame keeps its document.
  void hold();

  using CredentialsHandler = std::function<void(const CredentialsRequest&,
                                                const AnswerHandler<std::optional<Credentials>>&)>;
  /// Puts requests for a name and a password to `handler`. Without one they are answered with no.
  /// The browser then asks about every request, which costs a message each.
  void setCredentialsHandler(CredentialsHandler handler);

 private:
  enum class Main { Free, Serve, Held };

  void applyRules();
  void decide(const QJsonObject& event);
  bool isMainDocument(const QJsonObject& event) const;
  void serve(const QString& request, const QUrl& url);
  void askCredentials(const QJsonObject& event);
  void proceed(const QString& request);
  void refuse(const QString& request, const QString& reason);

  Session& session_;
  /// Ends with the gate; answers may come later.
  std::shared_ptr<char> lifetime_ = std::make_shared<char>();
  QString mainFrame_;
  Main main_ = Main::Free;
  LocalFiles localFiles_ = LocalFiles::Allowed;
  std::optional<QByteArray> markup_;
  std::unique_ptr<MarkupSource> source_;
  bool enabled_ = false;
  CredentialsHandler credentialsHandler_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace web
