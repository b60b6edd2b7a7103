#pragma once

#include <QUrl>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/dropbox/Client.h"
#include "platform/dropbox/Endpoints.h"
#include "platform/dropbox/RetryPolicy.h"
#include "platform/dropbox/TokenStore.h"
#include "platform/dropbox/UploadLimits.h"

namespace dropbox {

enum class AuthorizationOutcome { Success, Cancel, Error };

struct AuthorizationResult {
  AuthorizationOutcome outcome;
  /// The cause of `AuthorizationOutcome::Error`.
  MaybeError error;
};

struct Configuration {
  Endpoints endpoints = Endpoints::standard();
  RetryPolicy retry;
  UploadLimits limits;
  /// Empty: the standard store.
  std::shared_ptr<TokenStore> store;
};

/// Links the program to an account and gives out the clients of the linked one. Main thread only,
/// but for `authorizedClient` and `authorizedTeamClient`.
class ClientsManager {
 public:
  using OpenURL = std::function<void(const QUrl&)>;
  using AuthorizationCompletion = std::function<void(const AuthorizationResult&)>;

  explicit ClientsManager(Configuration configuration = {});
  /// Requests under way end with an error.
  ~ClientsManager();
  ClientsManager(const ClientsManager&) = delete;
  ClientsManager& operator=(const ClientsManager&) = delete;

  /// The program's own manager; made by the first call (on the main thread, with an application
  /// object), closed when the event loop ends and destroyed with the application object.
  static ClientsManager& shared();

  /// Sets the application key and begins to read the stored authorization. Called once, at
  /// start-up. `ready` (may be empty) comes when the clients below are known.
  void setupWithAppKeyDesktop(const QString& appKey, std::function<void()> ready = {});

  /// Empty when no user account is linked. On the main thread it tells what is known at the moment;
  /// on any other it first waits (at most ten seconds) until the stored authorization has been
  /// read.
  std::shared_ptr<Client> authorizedClient() const;
  std::shared_ptr<TeamClient> authorizedTeamClient() const;

  /// Begins an authorization (code flow with proof key, RFC 7636, method S256): `openURL` is given
  /// the address to open in the user's browser. An authorization begun earlier is abandoned.
  void authorizeFromControllerDesktop(const OpenURL& openURL);

  /// Tells whether `url` is in this application's own redirect scheme ("db-<key>://2/token?...",
  /// "db-<key>://2/cancel"); one that is not belongs to somebody else and nothing is done. For one
  /// that is, `completion` comes once, later, on the main thread: the code is exchanged and the
  /// token stored before a success is reported.
  bool handleRedirectURL(const QUrl& url, AuthorizationCompletion completion);

  /// Forgets the account at once, here and in the store, whatever the service says, and asks the
  /// service to revoke the token. `completion` (may be empty) comes when both have ended.
  void unlinkAndResetClients(std::function<void()> completion = {});

  /// Ends all requests under way with an error and sends no more, so that a program that is ending
  /// does not wait for an upload.
  void close();

 private:
  class Implementation;
  std::shared_ptr<Implementation> implementation_;
};

}  // namespace dropbox
