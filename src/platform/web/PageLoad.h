#pragma once

#include <QJsonObject>
#include <QSet>
#include <QString>
#include <QUrl>
#include <memory>
#include <optional>

#include "platform/dispatch/Timer.h"
#include "platform/web/DocumentTitle.h"
#include "platform/web/FrameLoads.h"
#include "platform/web/LoadProgress.h"
#include "platform/web/PageObservers.h"
#include "platform/web/PageSubscriptions.h"
#include "platform/web/RequestGate.h"
#include "platform/web/Session.h"

namespace web {

class Page;

/// Follows the loads of one page's main frame through the browser's events, those we ask for and
/// those that the page or its user begins, and tells the observers. Part of its page.
class PageLoad {
 public:
  PageLoad(Page& page, Session& session, PageObservers& observers);

  /// Subscribes to the main frame's session. Called when the page is owned by a shared pointer.
  void begin();
  /// Takes frames of another process into account.
  void observeChild(Session& session);
  void setMainFrame(const QString& identifier);
  /// The page's settings have reached its renderer. Loads begin only then: a renderer that is still
  /// starting would take up the settings after the document.
  void setReady();

  void load(const PageRequest& request);
  void stop();
  void hold() { gate_.hold(); }
  /// While somebody is asked the server's answer is no longer waited for.
  void setCredentialsHandler(RequestGate::CredentialsHandler handler);
  /// The load under way, if there is one, ends with `reason`.
  void fail(const Error& reason);

  QUrl currentURL() const;
  const QString& title() const { return title_.text(); }
  QString mimeType() const;
  double estimatedProgress() const { return progress_.estimate(); }
  bool isLoading() const { return loading_; }

 private:
  /// A main request that has not become the document.
  struct Provisional {
    QString loader;
    QUrl url;
    Response response;
    /// Begun by `load`, not by the page.
    bool requested = false;
  };
  struct Document {
    QString loader;
    QUrl url;
    QString mimeType;
    bool finished = false;
  };

  void handleRequest(const QJsonObject& event);
  void handleMainRequest(const QJsonObject& event);
  void handleResponse(const QJsonObject& event);
  void handleData(const QJsonObject& event);
  void handleRequestEnd(const QJsonObject& event);
  void handleRequestFailure(const QJsonObject& event);
  void handleFrameNavigated(const QJsonObject& event);
  void handleLifecycle(const QJsonObject& event);
  void handleStartedLoading(const QJsonObject& event);
  void handleStoppedLoading(const QJsonObject& event);
  void handleNavigatedWithin(const QJsonObject& event);
  void handleNavigateReply(const Result<QJsonObject>& reply);

  void navigate(const QUrl& url);
  void reloadAtFragment();
  void beginProvisional(const QString& loader, const QUrl& url);
  void commit(const QJsonObject& frame);
  /// Reads the title first, unless the document has finished.
  void finishWithTitle();
  void finish();
  void startAnswerTimer();
  void handleNoAnswer();
  void failWith(const Error& reason);
  void endLoad();
  void setLoading(bool loading);
  void reportProgress();
  Frame mainFrame() const;
  QUrl shownURL(const QUrl& url) const;

  Page& page_;
  Session& session_;
  PageObservers& observers_;
  FrameLoads frames_;
  DocumentTitle title_;
  RequestGate gate_;
  LoadProgress progress_;

  PageRequest request_;
  /// Address that stands in for the request's own, when no document can be served there.
  QUrl standIn_;
  /// Number of the load; what belongs to an earlier one is dropped.
  int generation_ = 0;
  /// A load is under way: neither finished, failed nor stopped.
  bool active_ = false;
  bool ready_ = false;
  /// A reload follows as soon as the browser has scrolled.
  bool reloadsAtFragment_ = false;
  /// Where to go as soon as the page is ready.
  std::optional<QUrl> waitingURL_;
  /// The navigation that was asked for has not been answered.
  bool awaitingReply_ = false;
  /// The load under way has replaced the document.
  bool committed_ = false;
  bool loading_ = false;
  /// The browser has told that the main frame and the frames in it are done.
  bool stoppedLoading_ = false;
  double reportedProgress_ = 0;
  std::optional<Provisional> provisional_;
  Document document_;
  /// Loaders of loads that were ended and may still replace the document, if only by an error page:
  /// what the browser still tells of them does not count.
  QSet<QString> endedLoaders_;
  QString lastErrorText_;
  std::unique_ptr<dispatch::Timer> answerTimer_;
  PageSubscriptions subscriptions_;
};

}  // namespace web
