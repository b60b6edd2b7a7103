#include "platform/web/LoadErrors.h"

#include <QDir>
#include <algorithm>
#include <iterator>

#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

struct Sentence {
  QStringView cause;
  /// %1 is the server, or the file for a file address.
  const char16_t* text;
};

/// The first row whose cause begins the error's name wins, so the exact ones come first.
constexpr Sentence sentences[] = {
    {u"NAME_NOT_RESOLVED", u"The server “%1” was not found."},
    {u"NAME_RESOLUTION_FAILED", u"The server “%1” was not found."},
    {u"ICANN_NAME_COLLISION", u"The server “%1” was not found."},
    {u"INTERNET_DISCONNECTED", u"This computer is not connected to the internet."},
    {u"NETWORK_CHANGED", u"The connection to “%1” broke because the network changed."},
    {u"NETWORK_ACCESS_DENIED", u"This computer does not allow the connection to “%1”."},
    {u"CONNECTION_REFUSED", u"The server “%1” refused the connection."},
    {u"CONNECTION_TIMED_OUT", u"The server “%1” did not answer."},
    {u"TIMED_OUT", u"The server “%1” did not answer."},
    {u"ADDRESS_UNREACHABLE", u"The server “%1” cannot be reached."},
    {u"ADDRESS_INVALID", u"The server “%1” cannot be reached."},
    {u"CONNECTION_", u"The connection to “%1” broke."},
    {u"EMPTY_RESPONSE", u"The server “%1” closed the connection without an answer."},
    {u"INVALID_HTTP_RESPONSE", u"The server “%1” sent an answer that is not HTTP."},
    {u"RESPONSE_HEADERS_TRUNCATED", u"The answer of the server “%1” broke off."},
    {u"HTTP2_", u"The server “%1” sent an answer that cannot be read."},
    {u"QUIC_", u"The server “%1” sent an answer that cannot be read."},
    {u"CONTENT_DECODING_FAILED", u"The server “%1” sent an answer that cannot be read."},
    {u"TOO_MANY_REDIRECTS", u"The server “%1” redirects in a circle."},
    {u"UNSAFE_REDIRECT", u"The server “%1” redirects to an address that a page may not lead to."},
    {u"INVALID_REDIRECT", u"The server “%1” redirects to an address that cannot be read."},
    {u"UNSAFE_PORT", u"“%1” uses a port that is reserved for another service."},
    {u"CERT_DATE_INVALID", u"The certificate of “%1” has expired or is not valid yet."},
    {u"CERT_COMMON_NAME_INVALID", u"The certificate of “%1” was made for another server."},
    {u"CERT_AUTHORITY_INVALID",
     u"The certificate of “%1” comes from an authority that is not trusted."},
    {u"CERT_REVOKED", u"The certificate of “%1” was revoked."},
    {u"CERT_", u"The certificate of “%1” cannot be trusted."},
    {u"BAD_SSL_CLIENT_AUTH_CERT", u"The server “%1” asks for a certificate of yours."},
    {u"SSL_CLIENT_AUTH", u"The server “%1” asks for a certificate of yours."},
    {u"SSL_", u"No secure connection to “%1” is possible."},
    {u"PROXY_", u"The proxy server cannot be used."},
    {u"TUNNEL_CONNECTION_FAILED", u"The proxy server cannot be used."},
    {u"INVALID_AUTH_CREDENTIALS", u"The server “%1” asks for a name and a password."},
    {u"HTTP_RESPONSE_CODE_FAILURE", u"The server “%1” answered with an error and sent no page."},
    {u"FILE_NOT_FOUND", u"The file “%1” does not exist."},
    {u"ACCESS_DENIED", u"The file “%1” may not be read."},
    {u"UNKNOWN_URL_SCHEME", u"Addresses that begin with “%2:” cannot be loaded."},
    {u"INVALID_URL", u"The address cannot be read."},
    {u"BLOCKED_BY_", u"The page of “%1” was blocked."},
};

QString subject(const QUrl& url) {
  if (url.isLocalFile()) return QDir::toNativeSeparators(url.toLocalFile());
  return url.host().isEmpty() ? url.toDisplayString() : url.host();
}

QString sentence(const FailedRequest& request) {
  QStringView cause = request.errorText;
  if (cause.startsWith(u"net::ERR_")) cause = cause.sliced(9);
  const auto* found =
      std::find_if(std::begin(sentences), std::end(sentences),
                   [cause](const Sentence& row) { return cause.startsWith(row.cause); });
  if (found == std::end(sentences))
    return u"The page of “%1” could not be loaded (%2)."_s.arg(subject(request.url), cause);
  QString text = QString::fromUtf16(found->text);
  return text.replace(u"%1"_s, subject(request.url)).replace(u"%2"_s, request.url.scheme());
}

QString download(const FailedRequest& request) {
  const QString type = request.response.mimeType;
  if (type.isEmpty()) return u"The address leads to a file to download, not to a web page."_s;
  return u"The address leads to a file to download (%1), not to a web page."_s.arg(type);
}

/// An aborted request that nobody stopped: the answer had nothing to show.
QString nothingToShow(const FailedRequest& request) {
  if (request.response.status > 0)
    return u"The server “%1” answered with status %2 and sent no page."_s.arg(
        subject(request.url), QString::number(request.response.status));
  if (request.url.scheme() == u"http" || request.url.scheme() == u"https" ||
      request.url.isLocalFile())
    return u"The load of the page was interrupted."_s;
  return u"Addresses that begin with “%1:” cannot be loaded."_s.arg(request.url.scheme());
}

}  // namespace

Error describeFailure(const FailedRequest& request) {
  if (request.kind == FailedRequest::Kind::Download)
    return makeError(NoDocument, download(request));
  if (request.errorText == u"net::ERR_ABORTED")
    return makeError(NoDocument, nothingToShow(request));
  return makeError(LoadFailed, sentence(request));
}

Error describeRefusal(const QUrl& url, const Error& answer) {
  if (!url.isRelative()) return makeError(LoadFailed, answer.localizedDescription);
  return makeError(LoadFailed, u"The address does not begin with a scheme, such as “https://”."_s);
}

Error describeNoAnswer(const QUrl& url, std::chrono::milliseconds limit) {
  const QString seconds = QString::number(static_cast<double>(limit.count()) / 1000);
  return makeError(
      NoAnswer, u"The server “%1” did not answer within %2 seconds."_s.arg(subject(url), seconds));
}

}  // namespace web
