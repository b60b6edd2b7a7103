#include "platform/web/Page.h"

#include <algorithm>
#include <cmath>

#include "platform/dispatch/Dispatch.h"
#include "platform/web/ChildFrames.h"
#include "platform/web/Connection.h"
#include "platform/web/Evaluation.h"
#include "platform/web/IsolatedWorld.h"
#include "platform/web/PageLoad.h"
#include "platform/web/PagePrompts.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {

std::shared_ptr<Page> Page::create(const PageConfiguration& configuration) {
  std::shared_ptr<Page> page(new Page(configuration));
  page->configure();
  return page;
}

Page::Page(const PageConfiguration& configuration)
    : configuration_(configuration),
      session_(std::make_shared<Session>()),
      ownWorld_(IsolatedWorld::create(session_, u"corvalis"_s)),
      childFrames_(std::make_unique<ChildFrames>(configuration.scripts,
                                                 [this](const std::shared_ptr<Session>& session) {
                                                   prompts_->observe(session);
                                                   load_->observeChild(*session);
                                                 })),
      prompts_(std::make_unique<PagePrompts>(*this)),
      load_(std::make_unique<PageLoad>(*this, *session_, observers_)) {}

Page::~Page() {
  close();
}

/// These commands come before all others, because the session keeps their order.
void Page::configure() {
  prompts_->observe(session_);
  load_->begin();
  subscriptions_.push_back(session_->addEventHandler(
      u"Inspector.targetCrashed"_s, [this, weak = weak_from_this()](const QJsonObject&) {
        if (const auto page = weak.lock()) handleCrash();
      }));
  childFrames_->configure(session_);
  session_->send(u"Inspector.enable"_s, {});
  // A file chooser that nobody sees would hold up the page.
  session_->send(u"Page.setInterceptFileChooserDialog"_s, {{u"enabled"_s, true}});
  setViewport(configuration_.layoutWidth, configuration_.viewportHeight,
              configuration_.deviceScaleFactor);
  // The renderer answers in order: with this reply it has taken in all of the above.
  session_->send(u"Page.getFrameTree"_s, {}, [weak = weak_from_this()](const Result<QJsonObject>&) {
    if (const auto page = weak.lock()) page->load_->setReady();
  });
}

void Page::setViewport(double layoutWidth, double viewportHeight, double deviceScaleFactor) {
  configuration_.layoutWidth = layoutWidth;
  configuration_.viewportHeight = viewportHeight;
  configuration_.deviceScaleFactor = deviceScaleFactor;
  session_->send(u"Emulation.setDeviceMetricsOverride"_s,
                 {{u"width"_s, std::max(1, static_cast<int>(std::lround(layoutWidth)))},
                  {u"height"_s, std::max(1, static_cast<int>(std::lround(viewportHeight)))},
                  {u"deviceScaleFactor"_s, deviceScaleFactor},
                  {u"mobile"_s, false}});
}

void Page::addObserver(std::weak_ptr<PageObserver> observer) {
  observers_.add(std::move(observer));
}

void Page::setPromptDelegate(std::weak_ptr<PagePromptDelegate> delegate) {
  prompts_->setDelegate(std::move(delegate));
  load_->setCredentialsHandler([this](const CredentialsRequest& request, const auto& answer) {
    prompts_->askCredentials(request, answer);
  });
}

void Page::attach(std::shared_ptr<Connection> connection, const PageTarget& target) {
  target_ = target;
  load_->setMainFrame(target.identifier);
  session_->attach(std::move(connection), target.session);
}

void Page::fail(const Error& reason) {
  load_->fail(reason);
  session_->close(reason);
  childFrames_->closeAll(reason);
}

void Page::load(const PageRequest& request) {
  viewersRequest_.reset();
  load_->load(request);
  if (session_->isClosed()) load_->fail(session_->closedReason());
}

void Page::loadFor(const void* viewer, const PageRequest& request) {
  const bool known = std::find(viewers_.begin(), viewers_.end(), viewer) != viewers_.end();
  if (viewersRequest_ == request && !known) return viewers_.push_back(viewer);
  load(request);
  viewersRequest_ = request;
  viewers_ = {viewer};
}

void Page::stopLoading() {
  viewersRequest_.reset();
  load_->stop();
}

void Page::holdDocument() {
  load_->hold();
}

QUrl Page::currentURL() const {
  return load_->currentURL();
}
QString Page::title() const {
  return load_->title();
}
QString Page::mainResponseMimeType() const {
  return load_->mimeType();
}
double Page::estimatedProgress() const {
  return load_->estimatedProgress();
}
bool Page::isLoading() const {
  return load_->isLoading();
}

void Page::evaluate(const QString& script, ValueCallback callback,
                    std::chrono::milliseconds timeout) {
  evaluateScript(*session_, {script, std::nullopt}, std::move(callback), timeout);
}

void Page::evaluateInFrames(const QString& script, FrameValuesCallback callback,
                            std::chrono::milliseconds timeout) {
  std::vector<std::shared_ptr<Session>> sessions{session_};
  const auto children = childFrames_->sessions();
  sessions.insert(sessions.end(), children.begin(), children.end());
  evaluateScriptInFrames(sessions, script, std::move(callback), timeout);
}

void Page::evaluateApart(const QString& script, ReplyCallback callback,
                         std::chrono::milliseconds timeout) {
  ownWorld_->evaluate(target_.identifier, script, std::move(callback), timeout);
}

void Page::send(const QString& method, const QJsonObject& parameters, ReplyCallback callback,
                std::chrono::milliseconds timeout) {
  session_->send(method, parameters, std::move(callback), timeout);
}

void Page::sendForData(const QString& method, const QJsonObject& parameters, ReplyForm form,
                       DataCallback callback, std::chrono::milliseconds timeout) {
  session_->sendForData(method, parameters, std::move(form), std::move(callback), timeout);
}

Subscription Page::addEventHandler(const QString& method, EventHandler handler) {
  return session_->addEventHandler(method, std::move(handler));
}

void Page::handleCrash() {
  const Error reason = makeError(PageCrashed, u"The page crashed in the browser."_s);
  load_->fail(reason);
  session_->failCommands(reason);
  dispatch::mainAsync([weak = weak_from_this(), reason] {
    if (const auto page = weak.lock())
      page->observers_.notify(&PageObserver::pageCrashed, *page, reason);
  });
}

void Page::close() {
  if (session_->isClosed()) return;
  const std::shared_ptr<Connection> connection = session_->connection();
  const Error reason = makeError(PageClosed, u"The page was closed."_s);
  session_->close(reason);
  childFrames_->closeAll(reason);
  if (connection) closeTarget(*connection, target_);
}

void Page::closeTarget(Connection& connection, const PageTarget& target) {
  constexpr std::chrono::seconds limit{10};
  connection.send(
      {{}, u"Target.closeTarget"_s, {{u"targetId"_s, target.identifier}}, {}, {}, limit});
  if (target.browserContext.isEmpty()) return;
  const QJsonObject context{{u"browserContextId"_s, target.browserContext}};
  connection.send({{}, u"Target.disposeBrowserContext"_s, context, {}, {}, limit});
}

}  // namespace web
