#pragma once

#include <QUrl>

namespace dropbox {

/// The service's base addresses. The routes' paths are appended to `api` and `content`; `authorize`
/// and `token` are whole addresses.
struct Endpoints {
  QUrl authorize;
  QUrl token;
  QUrl api;
  QUrl content;

  /// The service itself; or, when the environment names one in CORVALIS_DROPBOX_SERVER
  /// ("http://127.0.0.1:8080"), a stand-in on this machine. Other hosts are ignored there: a stray
  /// variable must not send an account's token elsewhere.
  static Endpoints standard();

  /// All four on one server: "/oauth2/authorize", "/oauth2/token", "/2/..." for both kinds of
  /// routes.
  static Endpoints onServer(const QUrl& server);
};

}  // namespace dropbox
