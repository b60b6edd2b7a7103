#include "platform/dropbox/ClientsManager.h"

#include <QCoreApplication>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/base/Log.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/ApiCall.h"
#include "platform/dropbox/Connection.h"
#include "platform/dropbox/DropboxError.h"
#include "platform/dropbox/Linking.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kLongestWaitForStore{10};

PostRequest revocation(const Endpoints& endpoints) {
  PostRequest post;
  post.request = QNetworkRequest(endpoints.api.resolved(QUrl(u"auth/token/revoke"_s)));
  post.subject = u"Dropbox"_s;
  // The route takes neither a body nor a content type.
  post.openBody = []() -> Result<std::unique_ptr<QIODevice>> { return nullptr; };
  return post;
}

}  // namespace

class ClientsManager::Implementation : public std::enable_shared_from_this<Implementation> {
 public:
  explicit Implementation(Configuration configuration)
      : configuration_(std::move(configuration)),
        transport_(std::make_shared<Transport>(configuration_.retry.silence)) {}

  void setup(const QString& appKey, std::function<void()> ready);
  std::shared_ptr<Client> client();
  std::shared_ptr<TeamClient> teamClient();
  void begin(const OpenURL& openURL);
  bool handle(const QUrl& url, AuthorizationCompletion completion);
  void unlink(std::function<void()> completion);
  void close() { transport_->close(); }

 private:
  using Lock = std::unique_lock<std::mutex>;

  void storeWasRead(const std::optional<Token>& token, int generation);
  void awaitStore(Lock& lock);
  std::shared_ptr<Authorization> authorizationFor(const Token& token);
  std::shared_ptr<Connection> connectionFor(std::shared_ptr<Authorization> authorization) const;
  void link(const Token& token);
  void forget();
  void exchange(const QString& code, const AuthorizationCompletion& completion);
  void exchanged(const Result<HttpReply>& reply, int generation,
                 const AuthorizationCompletion& completion);
  void revoke(const Token& token, std::function<void()> completion);

  Configuration configuration_;
  std::shared_ptr<Transport> transport_;
  QString appKey_;
  std::optional<Linking> linking_;
  std::shared_ptr<Authorization> authorization_;
  /// Rises with each link and each unlinking: what was begun before must not undo it.
  int generation_ = 0;

  std::mutex mutex_;
  std::condition_variable storeIsRead_;
  bool isStoreRead_ = true;
  std::shared_ptr<Client> client_;
  std::shared_ptr<TeamClient> teamClient_;
};

void ClientsManager::Implementation::setup(const QString& appKey, std::function<void()> ready) {
  appKey_ = appKey;
  if (!configuration_.store) configuration_.store = makeStandardTokenStore(appKey);
  {
    const Lock lock(mutex_);
    isStoreRead_ = false;
  }
  configuration_.store->read([weak = weak_from_this(), generation = generation_,
                              ready = std::move(ready)](const std::optional<Token>& token) {
    const auto self = weak.lock();
    if (!self) return;
    self->storeWasRead(token, generation);
    if (ready) ready();
  });
}

void ClientsManager::Implementation::storeWasRead(const std::optional<Token>& token,
                                                  int generation) {
  if (token && generation == generation_) link(*token);
  const Lock lock(mutex_);
  isStoreRead_ = true;
  storeIsRead_.notify_all();
}

/// A worker that is about to upload right after the start must not find the account unlinked.
void ClientsManager::Implementation::awaitStore(Lock& lock) {
  if (dispatch::isMainThread()) return;
  storeIsRead_.wait_for(lock, kLongestWaitForStore, [this] { return isStoreRead_; });
}

std::shared_ptr<Client> ClientsManager::Implementation::client() {
  Lock lock(mutex_);
  awaitStore(lock);
  return client_;
}

std::shared_ptr<TeamClient> ClientsManager::Implementation::teamClient() {
  Lock lock(mutex_);
  awaitStore(lock);
  return teamClient_;
}

std::shared_ptr<Authorization> ClientsManager::Implementation::authorizationFor(
    const Token& token) {
  const Authorization::Service service{transport_, configuration_.endpoints.token,
                                       configuration_.retry, appKey_};
  return std::make_shared<Authorization>(service, token);
}

std::shared_ptr<Connection> ClientsManager::Implementation::connectionFor(
    std::shared_ptr<Authorization> authorization) const {
  auto connection = std::make_shared<Connection>();
  connection->transport = transport_;
  connection->authorization = std::move(authorization);
  connection->endpoints = configuration_.endpoints;
  connection->retry = configuration_.retry;
  connection->limits = configuration_.limits;
  return connection;
}

void ClientsManager::Implementation::link(const Token& token) {
  forget();
  authorization_ = authorizationFor(token);
  authorization_->observe(
      [weak = weak_from_this()](const Token& renewed) {
        if (const auto self = weak.lock())
          self->configuration_.store->write(renewed, [](const MaybeError& error) {
            if (error) logLine(error->localizedDescription);
          });
      },
      [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        logLine(u"Dropbox has ended the authorization; the account is unlinked here"_s);
        self->forget();
        self->configuration_.store->remove([](const MaybeError&) {});
      });
  const auto connection = connectionFor(authorization_);
  const Lock lock(mutex_);
  if (token.isTeam())
    teamClient_ = std::make_shared<TeamClient>(connection);
  else
    client_ = std::make_shared<Client>(connection);
}

void ClientsManager::Implementation::forget() {
  ++generation_;
  if (authorization_) authorization_->forget();
  authorization_.reset();
  const Lock lock(mutex_);
  client_.reset();
  teamClient_.reset();
}

void ClientsManager::Implementation::begin(const OpenURL& openURL) {
  linking_.emplace(appKey_);
  openURL(linking_->authorizationAddress(configuration_.endpoints.authorize));
}

bool ClientsManager::Implementation::handle(const QUrl& url, AuthorizationCompletion completion) {
  const std::optional<Redirect> redirect = readRedirect(url, appKey_);
  if (!redirect) return false;
  const auto end = [completion](AuthorizationOutcome outcome, const MaybeError& error) {
    dispatch::mainAsync([completion, outcome, error] { completion({outcome, error}); });
  };
  // A redirect of another origin must not end the authorization that is under way.
  const bool isBareCancel = redirect->isCancelled && redirect->state.isEmpty();
  if (!isBareCancel && (!linking_ || !linking_->isAnsweredBy(redirect->state))) {
    end(AuthorizationOutcome::Error,
        makeError(ErrorStateMismatch,
                  u"The answer from Dropbox belongs to no link that was begun here."_s));
  } else if (redirect->isCancelled) {
    linking_.reset();
    end(AuthorizationOutcome::Cancel, std::nullopt);
  } else if (redirect->code.isEmpty()) {
    linking_.reset();
    const QString reason =
        redirect->errorDescription.isEmpty() ? redirect->error : redirect->errorDescription;
    end(AuthorizationOutcome::Error,
        makeError(ErrorAuthorization, u"Dropbox did not link: %1"_s.arg(reason)));
  } else {
    exchange(redirect->code, completion);
  }
  return true;
}

void ClientsManager::Implementation::exchange(const QString& code,
                                              const AuthorizationCompletion& completion) {
  PostRequest request = linking_->exchange(configuration_.endpoints.token, code);
  // A code and its verifier serve once.
  linking_.reset();
  postWithRetries(transport_, configuration_.retry, std::move(request),
                  [weak = weak_from_this(), generation = generation_,
                   completion](const Result<HttpReply>& reply) {
                    if (const auto self = weak.lock())
                      self->exchanged(reply, generation, completion);
                  });
}

void ClientsManager::Implementation::exchanged(const Result<HttpReply>& reply, int generation,
                                               const AuthorizationCompletion& completion) {
  if (!reply) return completion({AuthorizationOutcome::Error, reply.error()});
  const Result<Token> token = grantedToken(*reply, QDateTime::currentDateTimeUtc());
  if (!token) return completion({AuthorizationOutcome::Error, token.error()});
  if (generation != generation_)
    return completion({AuthorizationOutcome::Error,
                       makeError(ErrorNotLinked, u"The account was unlinked meanwhile."_s)});
  link(*token);
  configuration_.store->write(*token, [completion](const MaybeError& error) {
    // The account is linked all the same, until the program ends.
    if (error) logLine(error->localizedDescription);
    completion({AuthorizationOutcome::Success, std::nullopt});
  });
}

void ClientsManager::Implementation::unlink(std::function<void()> completion) {
  linking_.reset();
  const std::optional<Token> token =
      authorization_ ? std::optional(authorization_->token()) : std::nullopt;
  forget();
  const auto remaining = std::make_shared<int>((configuration_.store ? 1 : 0) + (token ? 1 : 0));
  const auto oneEnded = [remaining, completion = std::move(completion)] {
    if (--*remaining <= 0 && completion) completion();
  };
  if (*remaining == 0) return dispatch::mainAsync(oneEnded);
  if (token) revoke(*token, oneEnded);
  if (configuration_.store)
    configuration_.store->remove([oneEnded](const MaybeError& error) {
      if (error) logLine(error->localizedDescription);
      oneEnded();
    });
}

void ClientsManager::Implementation::revoke(const Token& token, std::function<void()> completion) {
  // The account's own object has forgotten the token; this one lives until the service has
  // answered.
  callApi(connectionFor(authorizationFor(token)), revocation(configuration_.endpoints),
          [completion = std::move(completion)](const Result<HttpReply>& reply) {
            if (!reply)
              logLine(u"Dropbox has not revoked the token: %1"_s.arg(
                  reply.error().localizedDescription));
            if (completion) completion();
          });
}

ClientsManager::ClientsManager(Configuration configuration)
    : implementation_(std::make_shared<Implementation>(std::move(configuration))) {}

ClientsManager::~ClientsManager() {
  implementation_->close();
}

ClientsManager& ClientsManager::shared() {
  static std::unique_ptr<ClientsManager> manager;
  if (!manager) {
    manager = std::make_unique<ClientsManager>();
    // A worker that waits for its upload must not keep a program that is ending.
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit,
                     [] { manager->close(); });
    // Qt's network objects must not outlive the application object.
    qAddPostRoutine([] { manager.reset(); });
  }
  return *manager;
}

void ClientsManager::setupWithAppKeyDesktop(const QString& appKey, std::function<void()> ready) {
  implementation_->setup(appKey, std::move(ready));
}

std::shared_ptr<Client> ClientsManager::authorizedClient() const {
  return implementation_->client();
}

std::shared_ptr<TeamClient> ClientsManager::authorizedTeamClient() const {
  return implementation_->teamClient();
}

void ClientsManager::authorizeFromControllerDesktop(const OpenURL& openURL) {
  implementation_->begin(openURL);
}

bool ClientsManager::handleRedirectURL(const QUrl& url, AuthorizationCompletion completion) {
  return implementation_->handle(url, std::move(completion));
}

void ClientsManager::unlinkAndResetClients(std::function<void()> completion) {
  implementation_->unlink(std::move(completion));
}

void ClientsManager::close() {
  implementation_->close();
}

}  // namespace dropbox
