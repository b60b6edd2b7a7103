#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>

namespace dropbox {

/// An authorization as the token endpoint grants it (RFC 6749, section 5.1, and the service's own
/// fields).
struct Token {
  QString accessToken = {};
  /// Empty when the service gave none: then the access token is all there is until it expires.
  QString refreshToken = {};
  /// Not valid when the service named no life time.
  QDateTime expiresAt = {};
  QString accountId = {};
  /// Set when a team granted the authorization and not a user.
  QString teamId = {};

  bool isTeam() const { return !teamId.isEmpty(); }
  bool canRefresh() const { return !refreshToken.isEmpty(); }
  /// True within the last minute of the access token's life, too: it must last for the request.
  bool isExpired(const QDateTime& now) const;

  /// The stored form. Reading gives none for what this program did not write.
  QByteArray toStored() const;
  static std::optional<Token> fromStored(const QByteArray& stored);

  friend bool operator==(const Token&, const Token&) = default;
};

}  // namespace dropbox
