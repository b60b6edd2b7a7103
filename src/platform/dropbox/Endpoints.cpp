#include "platform/dropbox/Endpoints.h"

#include "platform/base/Log.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

bool isThisMachine(const QUrl& server) {
  return server.host() == u"127.0.0.1"_s || server.host() == u"localhost"_s;
}

}  // namespace

Endpoints Endpoints::onServer(const QUrl& server) {
  const QString base = server.toString(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
  return {QUrl(base + u"/oauth2/authorize"_s), QUrl(base + u"/oauth2/token"_s),
          QUrl(base + u"/2/"_s), QUrl(base + u"/2/"_s)};
}

Endpoints Endpoints::standard() {
  const QUrl server(qEnvironmentVariable("CORVALIS_DROPBOX_SERVER"));
  if (isThisMachine(server)) return onServer(server);
  if (!server.isEmpty()) logLine(u"CORVALIS_DROPBOX_SERVER is not on this machine: ignored"_s);
  return {QUrl(u"https://www.dropbox.com/oauth2/authorize"_s),
          QUrl(u"https://api.dropboxapi.com/oauth2/token"_s),
          QUrl(u"https://api.dropboxapi.com/2/"_s), QUrl(u"https://content.dropboxapi.com/2/"_s)};
}

}  // namespace dropbox
