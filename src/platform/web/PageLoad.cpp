#include "platform/web/PageLoad.h"

#include "platform/dispatch/Dispatch.h"
#include "platform/web/LoadErrors.h"
#include "platform/web/Page.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {

PageLoad::PageLoad(Page& page, Session& session, PageObservers& observers)
    : page_(page),
      session_(session),
      observers_(observers),
      frames_(page, observers),
      title_(page, session, observers),
      gate_(session),
      subscriptions_(page) {}

void PageLoad::begin() {
  frames_.begin(session_);
  subscriptions_.add(session_, "Page.navigatedWithinDocument", *this,
                     &PageLoad::handleNavigatedWithin);
  subscriptions_.add(session_, "Page.frameStartedLoading", *this, &PageLoad::handleStartedLoading);
  subscriptions_.add(session_, "Page.frameStoppedLoading", *this, &PageLoad::handleStoppedLoading);
  observeChild(session_);
}

void PageLoad::observeChild(Session& session) {
  frames_.observe(session);
  subscriptions_.add(session, "Network.requestWillBeSent", *this, &PageLoad::handleRequest);
  subscriptions_.add(session, "Network.responseReceived", *this, &PageLoad::handleResponse);
  subscriptions_.add(session, "Network.dataReceived", *this, &PageLoad::handleData);
  subscriptions_.add(session, "Network.loadingFinished", *this, &PageLoad::handleRequestEnd);
  subscriptions_.add(session, "Network.loadingFailed", *this, &PageLoad::handleRequestFailure);
  subscriptions_.add(session, "Page.frameNavigated", *this, &PageLoad::handleFrameNavigated);
  subscriptions_.add(session, "Page.lifecycleEvent", *this, &PageLoad::handleLifecycle);
}

void PageLoad::setMainFrame(const QString& identifier) {
  frames_.setMainFrame(identifier);
  gate_.setMainFrame(identifier);
}

void PageLoad::setReady() {
  ready_ = true;
  if (const std::optional<QUrl> url = std::exchange(waitingURL_, std::nullopt)) navigate(*url);
}

void PageLoad::load(const PageRequest& request) {
  ++generation_;
  if (provisional_) endedLoaders_.insert(provisional_->loader);
  // Whether or not the document shown comes to its end, that is not the end of this load.
  document_.finished = true;
  active_ = true;
  committed_ = false;
  reloadsAtFragment_ = false;
  request_ = request;
  provisional_.reset();
  answerTimer_.reset();
  lastErrorText_.clear();
  const QUrl url = gate_.prepare(request);
  standIn_ = url == request.url ? QUrl() : url;
  const auto begin = [this, weak = page_.weak_from_this(), generation = generation_] {
    const auto page = weak.lock();
    if (!page || generation != generation_) return;
    progress_.restart();
    reportedProgress_ = 0;
    setLoading(true);
  };
  dispatch::mainAsync(begin);
  if (!request.markup && request.url.isLocalFile() && request.localFiles == LocalFiles::Refused) {
    const Error error =
        makeError(LocalFileRefused, u"Files of this computer may not be loaded here."_s);
    return dispatch::mainAsync(
        [this, weak = page_.weak_from_this(), generation = generation_, error] {
          const auto page = weak.lock();
          if (page && generation == generation_) failWith(error);
        });
  }
  navigate(url);
}

void PageLoad::navigate(const QUrl& url) {
  awaitingReply_ = true;
  if (!ready_) {
    waitingURL_ = url;
    return;
  }
  const QJsonObject parameters{{u"url"_s, url.toString(QUrl::FullyEncoded)}};
  session_.send(u"Page.navigate"_s, parameters,
                [this, weak = page_.weak_from_this(), generation = generation_](const auto& reply) {
                  const auto page = weak.lock();
                  if (!page) return;
                  if (generation == generation_) awaitingReply_ = false;
                  if (generation == generation_ && active_) return handleNavigateReply(reply);
                  if (reply) endedLoaders_.insert((*reply)[u"loaderId"].toString());
                });
}

void PageLoad::handleNavigateReply(const Result<QJsonObject>& reply) {
  // The end of the browser or the page is reported by `fail`, in its own words.
  if (!reply && session_.isClosed()) return;
  if (!reply) return failWith(describeRefusal(request_.url, reply.error()));
  const QString loader = (*reply)[u"loaderId"].toString();
  const QString errorText = (*reply)[u"errorText"].toString();
  if (errorText.isEmpty()) {
    if (loader.isEmpty()) reloadAtFragment();
    return;
  }
  // The page itself has gone on to another address meanwhile.
  if (provisional_ && provisional_->loader != loader) return;
  const bool isDownload = (*reply)[u"isDownload"].toBool();
  FailedRequest failed{currentURL(), errorText, {}, FailedRequest::Kind::Page};
  if (isDownload) failed.kind = FailedRequest::Kind::Download;
  if (provisional_) failed.response = provisional_->response;
  // The request may have ended before the browser told of it; its error page comes all the same.
  endedLoaders_.insert(loader);
  failWith(describeFailure(failed));
}

/// Only the fragment differs from the address shown: the browser just scrolls, but a load was asked
/// for. A reload before it has scrolled would go to the address without the fragment.
void PageLoad::reloadAtFragment() {
  reloadsAtFragment_ = document_.url != request_.url;
  if (!reloadsAtFragment_) session_.send(u"Page.reload"_s, {});
}

/// The page shows another address without another document: a fragment, or a script's history.
void PageLoad::handleNavigatedWithin(const QJsonObject& event) {
  if (!frames_.isMain(event[u"frameId"].toString())) return;
  document_.url = shownURL(QUrl(event[u"url"].toString()));
  if (std::exchange(reloadsAtFragment_, false)) session_.send(u"Page.reload"_s, {});
}

void PageLoad::handleRequest(const QJsonObject& event) {
  progress_.requestStarted(event[u"requestId"].toString());
  const bool isDocument = event[u"type"].toString() == u"Document";
  if (isDocument && frames_.isMain(event[u"frameId"].toString())) handleMainRequest(event);
}

void PageLoad::handleMainRequest(const QJsonObject& event) {
  const QString loader = event[u"loaderId"].toString();
  if (endedLoaders_.contains(loader)) return;
  const QUrl url = shownURL(QUrl(event[u"request"][u"url"].toString()));
  if (!provisional_ || provisional_->loader != loader) return beginProvisional(loader, url);
  provisional_->url = url;
  startAnswerTimer();
  if (event.contains(u"redirectResponse"))
    observers_.notify(&PageObserver::pageReceivedRedirect, page_, mainFrame());
}

void PageLoad::beginProvisional(const QString& loader, const QUrl& url) {
  provisional_ = Provisional{loader, url, {}, awaitingReply_};
  active_ = true;
  committed_ = false;
  lastErrorText_.clear();
  startAnswerTimer();
  setLoading(true);
  reportProgress();
  observers_.notify(&PageObserver::pageStartedProvisionalLoad, page_, mainFrame());
}

void PageLoad::startAnswerTimer() {
  // Given markup is answered by ourselves.
  if (request_.markup) return;
  answerTimer_ =
      dispatch::Timer::after(request_.responseTimeout, [this, weak = page_.weak_from_this()] {
        if (const auto page = weak.lock()) handleNoAnswer();
      });
}

void PageLoad::handleNoAnswer() {
  if (!provisional_) return;
  const QUrl url = provisional_->url;
  session_.send(u"Page.stopLoading"_s, {});
  failWith(describeNoAnswer(url, request_.responseTimeout));
}

void PageLoad::handleResponse(const QJsonObject& event) {
  if (!provisional_ || event[u"requestId"].toString() != provisional_->loader) return;
  answerTimer_.reset();
  const QJsonObject response = event[u"response"].toObject();
  provisional_->response = {provisional_->url, response[u"status"].toInt(),
                            response[u"mimeType"].toString()};
  observers_.notify(&PageObserver::pageReceivedResponse, page_, provisional_->response);
}

void PageLoad::handleData(const QJsonObject& event) {
  const QString request = event[u"requestId"].toString();
  const QString identifier = frames_.frameOfRequest(request);
  const std::optional<Frame> child = frames_.child(identifier);
  if (!child && !frames_.isMain(identifier)) return;
  observers_.notify(&PageObserver::pageReceivedData, page_, child ? *child : mainFrame(), request,
                    qint64(event[u"dataLength"].toDouble()));
}

void PageLoad::handleRequestEnd(const QJsonObject& event) {
  progress_.requestEnded(event[u"requestId"].toString());
  reportProgress();
}

void PageLoad::handleRequestFailure(const QJsonObject& event) {
  const bool isMain = provisional_ && event[u"requestId"].toString() == provisional_->loader;
  if (isMain) {
    lastErrorText_ = event[u"errorText"].toString();
    answerTimer_.reset();
    // A navigation that the page itself began and that came to nothing leaves the document as it
    // is.
    if (event[u"canceled"].toBool() && !provisional_->requested) {
      provisional_.reset();
      active_ = !document_.finished;
    }
  }
  handleRequestEnd(event);
}

void PageLoad::handleFrameNavigated(const QJsonObject& event) {
  const QJsonObject frame = event[u"frame"].toObject();
  if (frames_.isMain(frame[u"id"].toString())) commit(frame);
}

void PageLoad::commit(const QJsonObject& frame) {
  const QString loader = frame[u"loaderId"].toString();
  const QString unreachable = frame[u"unreachableUrl"].toString();
  title_.clear();
  const QUrl url = shownURL(QUrl(frame[u"url"].toString() + frame[u"urlFragment"].toString()));
  const bool counts = active_ && !endedLoaders_.contains(loader);
  document_ = {loader, url, frame[u"mimeType"].toString(), !counts};
  if (!counts) return;
  // Loads of a frame replace its document in their order: none of the earlier ones follows.
  endedLoaders_.clear();
  answerTimer_.reset();
  if (!unreachable.isEmpty()) {
    const QString text = lastErrorText_.isEmpty() ? u"net::ERR_FAILED"_s : lastErrorText_;
    return failWith(describeFailure({QUrl(unreachable), text, {}, FailedRequest::Kind::Page}));
  }
  // Addresses without a request of their own, such as about:blank, are first heard of here.
  if (!provisional_ || provisional_->loader != loader) beginProvisional(loader, url);
  provisional_.reset();
  answerTimer_.reset();
  committed_ = true;
  progress_.committed();
  reportProgress();
  observers_.notify(&PageObserver::pageCommittedLoad, page_, mainFrame());
}

void PageLoad::handleLifecycle(const QJsonObject& event) {
  const QString name = event[u"name"].toString();
  const bool isCurrent = event[u"loaderId"].toString() == document_.loader;
  if (isCurrent &&
      (name == u"DOMContentLoaded" || name == u"networkAlmostIdle" || name == u"networkIdle"))
    return title_.read({});
  if (name != u"load" || !frames_.isMain(event[u"frameId"].toString())) return;
  if (isCurrent) finishWithTitle();
}

void PageLoad::finishWithTitle() {
  if (document_.finished || !active_) return;
  title_.read([this, loader = document_.loader] {
    if (active_ && document_.loader == loader && !document_.finished) finish();
  });
}

void PageLoad::finish() {
  document_.finished = true;
  active_ = provisional_.has_value();
  progress_.finished();
  reportProgress();
  observers_.notify(&PageObserver::pageFinishedLoad, page_, mainFrame());
  if (stoppedLoading_) setLoading(false);
}

void PageLoad::handleStartedLoading(const QJsonObject& event) {
  if (!frames_.isMain(event[u"frameId"].toString())) return;
  stoppedLoading_ = false;
  if (active_) setLoading(true);
}

void PageLoad::handleStoppedLoading(const QJsonObject& event) {
  if (!frames_.isMain(event[u"frameId"].toString())) return;
  stoppedLoading_ = true;
  if (!active_ && document_.finished) return setLoading(false);
  // A page that stops its own loading is complete, though it has no load event.
  if (committed_ && !provisional_) finishWithTitle();
}

void PageLoad::setCredentialsHandler(RequestGate::CredentialsHandler handler) {
  gate_.setCredentialsHandler([this, handler = std::move(handler)](
                                  const CredentialsRequest& request,
                                  const AnswerHandler<std::optional<Credentials>>& answer) {
    answerTimer_.reset();
    handler(request, answer);
  });
}

void PageLoad::stop() {
  // What a loaded page fetches later is part of it: its pictures would stay broken.
  if (!active_ && !loading_) return;
  ++generation_;
  session_.send(u"Page.stopLoading"_s, {});
  endLoad();
  dispatch::mainAsync([this, weak = page_.weak_from_this(), generation = generation_] {
    const auto page = weak.lock();
    if (page && generation == generation_) setLoading(false);
  });
}

void PageLoad::fail(const Error& reason) {
  if (!active_) return;
  dispatch::mainAsync([this, weak = page_.weak_from_this(), generation = generation_, reason] {
    const auto page = weak.lock();
    if (page && generation == generation_ && active_) failWith(reason);
  });
}

void PageLoad::endLoad() {
  if (active_) endedLoaders_.insert(provisional_ ? provisional_->loader : document_.loader);
  active_ = false;
  awaitingReply_ = false;
  reloadsAtFragment_ = false;
  waitingURL_.reset();
  provisional_.reset();
  answerTimer_.reset();
}

void PageLoad::failWith(const Error& reason) {
  const LoadPhase phase =
      provisional_ || !committed_ ? LoadPhase::Provisional : LoadPhase::Committed;
  endLoad();
  observers_.notify(&PageObserver::pageFailedLoad, page_, phase, reason);
  setLoading(false);
}

void PageLoad::setLoading(bool loading) {
  if (std::exchange(loading_, loading) != loading)
    observers_.notify(&PageObserver::pageChangedLoading, page_, loading);
}

void PageLoad::reportProgress() {
  const double estimate = progress_.estimate();
  if (estimate <= reportedProgress_) return;
  reportedProgress_ = estimate;
  observers_.notify(&PageObserver::pageChangedProgress, page_, estimate);
}

Frame PageLoad::mainFrame() const {
  return {frames_.main(), Frame::Kind::Main, provisional_ ? provisional_->url : document_.url};
}

QUrl PageLoad::shownURL(const QUrl& url) const {
  return !standIn_.isEmpty() && url == standIn_ ? request_.url : url;
}

QUrl PageLoad::currentURL() const {
  if (provisional_) return provisional_->url;
  return awaitingReply_ || document_.loader.isEmpty() ? request_.url : document_.url;
}

QString PageLoad::mimeType() const {
  return provisional_ ? provisional_->response.mimeType : document_.mimeType;
}

}  // namespace web
