#pragma once

#include <QByteArray>
#include <QUrl>
#include <memory>
#include <optional>

#include "platform/web/PageConfiguration.h"
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

 private:
  enum class Main { Free, Serve, Held };

  void applyRules();
  void decide(const QJsonObject& event);
  bool isMainDocument(const QJsonObject& event) const;
  void serve(const QString& request, const QUrl& url);
  void proceed(const QString& request);
  void refuse(const QString& request, const QString& reason);

  Session& session_;
  QString mainFrame_;
  Main main_ = Main::Free;
  LocalFiles localFiles_ = LocalFiles::Allowed;
  std::optional<QByteArray> markup_;
  std::unique_ptr<MarkupSource> source_;
  bool enabled_ = false;
  Subscription subscription_;
};

}  // namespace web
