#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/web/Connection.h"
#include "platform/web/Engine.h"
#include "platform/web/EngineProcess.h"
#include "platform/web/Session.h"

namespace web {

/// One run of the browser: its process, the conversation with it and the pages it holds. Ends once
/// and is not started again. Part of its engine.
class EngineInstance : public std::enable_shared_from_this<EngineInstance> {
 public:
  static Result<std::shared_ptr<EngineInstance>> start(const EngineOptions& options);
  ~EngineInstance();
  EngineInstance(const EngineInstance&) = delete;
  EngineInstance& operator=(const EngineInstance&) = delete;

  bool hasEnded() const { return ended_; }
  qint64 processIdentifier() const { return process_->processIdentifier(); }
  /// Makes the page's target and attaches the page to it.
  void open(const std::shared_ptr<Page>& page);
  /// Ends the browser as its user would, so that it writes what it keeps; by force after 2 s.
  void shutDown();
  /// Ends the browser by force; its pages fail with `reason`.
  void end(const Error& reason, EngineProcess::FolderRemoval removal);

 private:
  explicit EngineInstance(std::unique_ptr<EngineProcess> process);
  void connect();
  void handleCrash(const Error& reason);
  void closeOpenedWindow(const QJsonObject& event);
  void createTarget(const std::weak_ptr<Page>& page, const QString& browserContext);
  void attachTarget(const std::weak_ptr<Page>& page, const PageTarget& target);
  void denyDownloads(const QString& browserContext);

  std::unique_ptr<EngineProcess> process_;
  std::shared_ptr<Connection> connection_;
  std::shared_ptr<Session> browser_;
  std::vector<std::weak_ptr<Page>> pages_;
  Subscription targetCreated_;
  bool ended_ = false;
};

}  // namespace web
