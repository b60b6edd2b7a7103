#include "platform/dropbox/Token.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 kSafetySeconds = 60;
}

bool Token::isExpired(const QDateTime& now) const {
  return expiresAt.isValid() && now.addSecs(kSafetySeconds) >= expiresAt;
}

QByteArray Token::toStored() const {
  QJsonObject object{{u"access_token"_s, accessToken},
                     {u"refresh_token"_s, refreshToken},
                     {u"account_id"_s, accountId},
                     {u"team_id"_s, teamId}};
  if (expiresAt.isValid()) object.insert(u"expires_at"_s, expiresAt.toUTC().toString(Qt::ISODate));
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<Token> Token::fromStored(const QByteArray& stored) {
  const QJsonObject object = QJsonDocument::fromJson(stored).object();
  Token token;
  token.accessToken = object.value(u"access_token"_s).toString();
  token.refreshToken = object.value(u"refresh_token"_s).toString();
  token.accountId = object.value(u"account_id"_s).toString();
  token.teamId = object.value(u"team_id"_s).toString();
  token.expiresAt = QDateTime::fromString(object.value(u"expires_at"_s).toString(), Qt::ISODate);
  if (token.accessToken.isEmpty()) return std::nullopt;
  return token;
}

}  // namespace dropbox
