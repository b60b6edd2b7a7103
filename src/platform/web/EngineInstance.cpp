#include "platform/web/EngineInstance.h"

#include <algorithm>

#include "platform/base/Log.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr std::chrono::seconds startTimeout{30};
constexpr std::chrono::seconds closeTimeout{2};

/// What the browser said is worth more than the bare fact that it ended.
Error describeEnd(const Error& reason, const QString& diagnostics) {
  if (diagnostics.contains(u"No usable sandbox"))
    return makeError(
        EngineNotStarted,
        u"The browser could not start: this computer does not allow it a sandbox. Install the "
        "package “chromium-sandbox”."_s);
  return reason;
}

}  // namespace

Result<std::shared_ptr<EngineInstance>> EngineInstance::start(const EngineOptions& options) {
  const Result<EngineProgram> program =
      options.program ? engineProgramAt(*options.program) : findEngineProgram();
  if (!program) return tl::make_unexpected(program.error());
  Result<std::unique_ptr<EngineProcess>> process = EngineProcess::start(
      *program, engineArguments(*program, options.use) + options.extraArguments,
      options.profileFolder);
  if (!process) return tl::make_unexpected(process.error());
  std::shared_ptr<EngineInstance> instance(new EngineInstance(std::move(*process)));
  instance->connect();
  return instance;
}

EngineInstance::EngineInstance(std::unique_ptr<EngineProcess> process)
    : process_(std::move(process)) {}

EngineInstance::~EngineInstance() {
  shutDown();
}

void EngineInstance::connect() {
  connection_ = Connection::create(process_->takeReadEnd(), process_->takeWriteEnd());
  connection_->setEndedHandler([weak = weak_from_this()](const Error& reason) {
    if (const auto self = weak.lock()) self->handleCrash(reason);
  });
  browser_ = std::make_shared<Session>();
  targetCreated_ = browser_->addEventHandler(u"Target.targetCreated"_s,
                                             [weak = weak_from_this()](const QJsonObject& event) {
                                               if (const auto self = weak.lock())
                                                 self->closeOpenedWindow(event);
                                             });
  browser_->attach(connection_, {});
  browser_->send(u"Target.setDiscoverTargets"_s, {{u"discover"_s, true}});
  denyDownloads({});
}

void EngineInstance::denyDownloads(const QString& browserContext) {
  QJsonObject parameters{{u"behavior"_s, u"deny"_s}};
  if (!browserContext.isEmpty()) parameters.insert(u"browserContextId"_s, browserContext);
  browser_->send(u"Browser.setDownloadBehavior"_s, parameters);
}

void EngineInstance::open(const std::shared_ptr<Page>& page) {
  std::erase_if(pages_, [](const auto& known) { return known.expired(); });
  pages_.push_back(page);
  if (page->configuration().profile == Profile::Program) return createTarget(page, {});
  browser_->send(
      u"Target.createBrowserContext"_s, {{u"disposeOnDetach"_s, true}},
      [this, weak = weak_from_this(),
       page = std::weak_ptr(page)](const Result<QJsonObject>& reply) {
        const auto self = weak.lock();
        const auto opened = page.lock();
        if (!self || !opened) return;
        if (!reply) return opened->fail(reply.error());
        const QString context = (*reply)[u"browserContextId"].toString();
        denyDownloads(context);
        createTarget(page, context);
      },
      startTimeout);
}

void EngineInstance::createTarget(const std::weak_ptr<Page>& page, const QString& browserContext) {
  QJsonObject parameters{{u"url"_s, u"about:blank"_s}};
  if (!browserContext.isEmpty()) parameters.insert(u"browserContextId"_s, browserContext);
  browser_->send(
      u"Target.createTarget"_s, parameters,
      [this, weak = weak_from_this(), page, browserContext](const Result<QJsonObject>& reply) {
        const auto self = weak.lock();
        if (!self) return;
        if (reply)
          return attachTarget(page, {(*reply)[u"targetId"].toString(), {}, browserContext});
        if (const auto opened = page.lock()) opened->fail(reply.error());
      },
      startTimeout);
}

void EngineInstance::attachTarget(const std::weak_ptr<Page>& page, const PageTarget& target) {
  if (const auto opened = page.lock(); !opened || opened->isClosed())
    return Page::closeTarget(*connection_, target);
  browser_->send(
      u"Target.attachToTarget"_s, {{u"targetId"_s, target.identifier}, {u"flatten"_s, true}},
      [weak = weak_from_this(), page, target](const Result<QJsonObject>& reply) {
        const auto self = weak.lock();
        const auto opened = page.lock();
        if (!self) return;
        if (!opened || opened->isClosed()) return Page::closeTarget(*self->connection_, target);
        if (!reply) return opened->fail(reply.error());
        opened->attach(self->connection_, {target.identifier, (*reply)[u"sessionId"].toString(),
                                           target.browserContext});
      },
      startTimeout);
}

/// A window that a page has opened is closed: there is nobody to show it to.
void EngineInstance::closeOpenedWindow(const QJsonObject& event) {
  const QJsonObject target = event[u"targetInfo"].toObject();
  if (target[u"type"].toString() != u"page" || target[u"openerId"].toString().isEmpty()) return;
  browser_->send(u"Target.closeTarget"_s, {{u"targetId"_s, target[u"targetId"]}});
}

void EngineInstance::handleCrash(const Error& reason) {
  if (ended_) return;
  logLine(u"The browser ended unexpectedly."_s);
  end(describeEnd(reason, process_->kill()), EngineProcess::FolderRemoval::InBackground);
}

/// A profile that ends with the browser needs no farewell.
void EngineInstance::shutDown() {
  if (!ended_ && process_->keepsProfile()) {
    browser_->send(u"Browser.close"_s, {});
    process_->waitForEnd(closeTimeout);
  }
  end(makeError(EngineShutDown, u"The browser was shut down."_s),
      EngineProcess::FolderRemoval::Now);
}

void EngineInstance::end(const Error& reason, EngineProcess::FolderRemoval removal) {
  if (std::exchange(ended_, true)) return;
  for (const auto& weak : std::exchange(pages_, {}))
    if (const auto page = weak.lock()) page->fail(reason);
  browser_->close(reason);
  connection_->close(reason);
  process_->end(removal);
}

}  // namespace web
