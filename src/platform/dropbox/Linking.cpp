#include "platform/dropbox/Linking.h"

#include <QUrlQuery>

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

/// Uploading is all that the program does with an account.
constexpr auto kScope = "files.content.write"_L1;

/// A text and never a QUrl: that would take the host "2" for a number and write 0.0.0.2.
QString redirectAddress(const QString& appKey) {
  return u"db-%1://2/token"_s.arg(appKey);
}

QString decoded(const QUrlQuery& query, const QString& name) {
  QString value = query.queryItemValue(name, QUrl::FullyEncoded);
  value.replace(u'+', u"%20"_s);
  return QUrl::fromPercentEncoding(value.toUtf8());
}

}  // namespace

Linking::Linking(const QString& appKey)
    : appKey_(appKey), state_(randomText()), proofKey_(ProofKey::create()) {}

QUrl Linking::authorizationAddress(const QUrl& endpoint) const {
  QUrlQuery query;
  query.addQueryItem(u"client_id"_s, appKey_);
  query.addQueryItem(u"response_type"_s, u"code"_s);
  query.addQueryItem(u"code_challenge"_s, proofKey_.challenge);
  query.addQueryItem(u"code_challenge_method"_s, u"S256"_s);
  query.addQueryItem(u"token_access_type"_s, u"offline"_s);
  query.addQueryItem(u"scope"_s, kScope);
  query.addQueryItem(u"state"_s, state_);
  query.addQueryItem(u"redirect_uri"_s,
                     QString::fromLatin1(QUrl::toPercentEncoding(redirectAddress(appKey_))));
  QUrl address = endpoint;
  address.setQuery(query);
  return address;
}

PostRequest Linking::exchange(const QUrl& tokenEndpoint, const QString& code) const {
  return formPost(tokenEndpoint, {{u"grant_type"_s, u"authorization_code"_s},
                                  {u"code"_s, code},
                                  {u"code_verifier"_s, proofKey_.verifier},
                                  {u"client_id"_s, appKey_},
                                  {u"redirect_uri"_s, redirectAddress(appKey_)}});
}

std::optional<Redirect> readRedirect(const QUrl& url, const QString& appKey) {
  if (appKey.isEmpty() || url.scheme() != u"db-"_s + appKey.toLower()) return std::nullopt;
  const QUrlQuery query(url);
  Redirect redirect;
  redirect.code = decoded(query, u"code"_s);
  redirect.state = decoded(query, u"state"_s);
  redirect.error = decoded(query, u"error"_s);
  redirect.errorDescription = decoded(query, u"error_description"_s);
  redirect.isCancelled = url.path() == u"/cancel"_s || redirect.error == u"access_denied"_s;
  return redirect;
}

}  // namespace dropbox
