#include "platform/dropbox/RouteError.h"

#include <array>

#include "platform/dropbox/DropboxError.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

constexpr int kDeepestUnion = 8;
constexpr int kLongestQuotation = 300;

/// The object inside a union's value: under the tag's own name, or the one that path errors call
/// "reason".
QJsonValue inner(const QJsonObject& value, const QString& tag) {
  return value.contains(tag) ? value.value(tag) : value.value(u"reason"_s);
}

/// The service's own words, for the errors that only its documentation explains.
QString quotation(const HttpReply& reply) {
  const QJsonObject json = reply.json();
  QString text = json.value(u"error_summary"_s).toString();
  if (text.isEmpty()) text = json.value(u"error_description"_s).toString();
  if (text.isEmpty()) text = QString::fromUtf8(reply.body).simplified();
  return text.left(kLongestQuotation);
}

struct Meaning {
  QLatin1StringView tag;
  ErrorCode code;
  QLatin1StringView text;
};

constexpr std::array kMeanings{
    Meaning{"conflict"_L1, ErrorConflict, "“%1” exists in the Dropbox folder already."_L1},
    Meaning{"insufficient_space"_L1, ErrorNoSpace,
            "There is not enough space in the Dropbox account for “%1”."_L1},
    Meaning{"no_write_permission"_L1, ErrorPath, "Dropbox does not allow writing “%1” there."_L1},
    Meaning{"disallowed_name"_L1, ErrorPath, "Dropbox does not allow the name “%1”."_L1},
    Meaning{"malformed_path"_L1, ErrorPath, "Dropbox cannot use the name “%1”."_L1},
    Meaning{"too_many_write_operations"_L1, ErrorRateLimit,
            "Dropbox is busy with other changes to this account; “%1” was not uploaded."_L1},
    Meaning{"payload_too_large"_L1, ErrorRequest, "“%1” is too large for Dropbox."_L1},
    Meaning{"too_large"_L1, ErrorRequest, "“%1” is too large for Dropbox."_L1},
};

Error refusal(const HttpReply& reply, const QString& subject) {
  const QStringList tags = errorTags(reply);
  for (const Meaning& meaning : kMeanings)
    if (tags.contains(meaning.tag))
      return makeError(meaning.code,
                       QString::fromUtf8(meaning.text.data(), meaning.text.size()).arg(subject));
  return makeError(ErrorRequest, u"Dropbox refused the request: %1"_s.arg(quotation(reply)));
}

}  // namespace

QStringList errorTags(const HttpReply& reply) {
  QStringList tags;
  QJsonValue value = reply.json().value(u"error"_s);
  for (int depth = 0; depth < kDeepestUnion; ++depth) {
    const QString tag =
        value.isString() ? value.toString() : value.toObject().value(u".tag"_s).toString();
    if (tag.isEmpty()) break;
    tags.append(tag);
    value = inner(value.toObject(), tag);
  }
  return tags;
}

std::optional<qint64> correctOffset(const HttpReply& reply) {
  QJsonObject value = reply.json().value(u"error"_s).toObject();
  for (int depth = 0; depth < kDeepestUnion && !value.isEmpty(); ++depth) {
    const QString tag = value.value(u".tag"_s).toString();
    const QJsonValue offset = value.value(u"correct_offset"_s);
    if (tag == u"incorrect_offset"_s && offset.isDouble()) return offset.toInteger();
    value = inner(value, tag).toObject();
  }
  return std::nullopt;
}

std::optional<std::chrono::seconds> requestedPause(const HttpReply& reply) {
  if (reply.retryAfter) return reply.retryAfter;
  const QJsonValue seconds = reply.json().value(u"error"_s).toObject().value(u"retry_after"_s);
  if (!seconds.isDouble() || seconds.toInteger() < 0) return std::nullopt;
  return std::chrono::seconds(seconds.toInteger());
}

Error routeError(const HttpReply& reply, const QString& subject) {
  const QString words = quotation(reply);
  switch (reply.status) {
    case 0:
      return makeError(ErrorNetwork, u"Dropbox cannot be reached: %1"_s.arg(reply.networkError));
    case 401:
      return makeError(
          ErrorAuthorization,
          u"Dropbox does not accept the linked account any more (%1). Link it again."_s.arg(words));
    case 409:
      return refusal(reply, subject);
    case 429:
      return makeError(ErrorRateLimit,
                       u"Dropbox takes no more requests at the moment. Try again later."_s);
    default:
      break;
  }
  if (reply.status >= 500)
    return makeError(ErrorService,
                     u"Dropbox failed (status %1). Try again later."_s.arg(reply.status));
  return makeError(ErrorRequest,
                   u"Dropbox refused the request (status %1): %2"_s.arg(reply.status).arg(words));
}

}  // namespace dropbox
