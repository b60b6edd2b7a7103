#include "platform/web/Message.h"

#include <simdjson.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <charconv>

#include "platform/web/Transport.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

static_assert(Transport::padding >= simdjson::SIMDJSON_PADDING);

namespace dom = simdjson::dom;

/// A parser keeps several times the size of the largest message it has read.
constexpr std::size_t keptParserCapacity = std::size_t{4} << 20;

QString toString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QJsonObject toObject(dom::object object);

/// Nesting is bounded by the parser.
QJsonValue toValue(dom::element element) {
  switch (element.type()) {
    case dom::element_type::ARRAY: {
      QJsonArray array;
      for (const dom::element item : dom::array(element))
        array.append(toValue(item));
      return array;
    }
    case dom::element_type::OBJECT:
      return toObject(element);
    case dom::element_type::INT64:
      return qint64(int64_t(element));
    case dom::element_type::UINT64:
    case dom::element_type::DOUBLE:
      return double(element);
    case dom::element_type::STRING:
      return toString(element);
    case dom::element_type::BOOL:
      return bool(element);
    case dom::element_type::NULL_VALUE:
      break;
  }
  return QJsonValue::Null;
}

QJsonObject toObject(dom::object object) {
  QJsonObject converted;
  for (const auto field : object)
    converted.insert(toString(field.key), toValue(field.value));
  return converted;
}

/// The two ways a message can be read in give the same: by the fast parser, which the large replies
/// need, and by Qt's, which takes strings that the fast one refuses (half a surrogate pair, cut by
/// a page).
struct FastSource {
  dom::object object;

  bool has(std::string_view key) const { return object[key].error() == simdjson::SUCCESS; }
  qint64 integer(std::string_view key) const { return int64_t(object[key]); }
  QString string(std::string_view key) const {
    std::string_view text;
    return object[key].get(text) == simdjson::SUCCESS ? toString(text) : QString();
  }
  QJsonObject child(std::string_view key) const {
    dom::object found;
    return object[key].get(found) == simdjson::SUCCESS ? toObject(found) : QJsonObject();
  }
  DataReply data(const QByteArray& dataField) const {
    DataReply reply;
    for (const auto field : dom::object(object["result"])) {
      if (field.key != std::string_view(dataField.constData(), size_t(dataField.size())))
        reply.rest.insert(toString(field.key), toValue(field.value));
    }
    const std::string_view text = object["result"][dataField.constData()];
    const QByteArray raw =
        QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
    const bool encoded = reply.rest[u"base64Encoded"].toBool(true);
    reply.data = encoded ? QByteArray::fromBase64(raw) : QByteArray(raw.data(), raw.size());
    return reply;
  }
};

struct PatientSource {
  QJsonObject object;

  static QLatin1StringView latin(std::string_view key) {
    return {key.data(), qsizetype(key.size())};
  }
  bool has(std::string_view key) const { return object.contains(latin(key)); }
  qint64 integer(std::string_view key) const { return object[latin(key)].toInteger(); }
  QString string(std::string_view key) const { return object[latin(key)].toString(); }
  QJsonObject child(std::string_view key) const { return object[latin(key)].toObject(); }
  Result<DataReply> data(const QByteArray& dataField) const {
    DataReply reply{{}, child("result")};
    if (!reply.rest.contains(QLatin1StringView(dataField)))
      return tl::make_unexpected(makeError(DamagedReply, u"The reply lacks its data."_s));
    const QByteArray raw = reply.rest.take(QLatin1StringView(dataField)).toString().toUtf8();
    reply.data = reply.rest[u"base64Encoded"].toBool(true) ? QByteArray::fromBase64(raw) : raw;
    return reply;
  }
};

template <class Source>
Message interpretReply(const Source& source, const MessageInterest& interest) {
  const qint64 identifier = source.integer("id");
  const std::optional<ReplyForm> form = interest.replyForm(identifier);
  if (!form) return IgnoredMessage{};
  if (source.has("error")) {
    const QString text = source.child("error")[u"message"].toString();
    return ReplyMessage{identifier, tl::make_unexpected(makeError(CommandRefused, text))};
  }
  if (!form->dataField.isEmpty()) return ReplyMessage{identifier, source.data(form->dataField)};
  return ReplyMessage{identifier, DataReply{{}, source.child("result")}};
}

template <class Source>
Message interpret(const Source& source, const MessageInterest& interest) {
  if (source.has("id")) return interpretReply(source, interest);
  const QString method = source.string("method");
  if (!interest.wantsEvent(method)) return IgnoredMessage{};
  return EventMessage{source.string("sessionId"), method, source.child("params")};
}

Message readPatiently(std::string_view text, const MessageInterest& interest) {
  QJsonParseError error;
  const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
  const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
  if (!document.isObject()) return DamagedMessage{error.errorString()};
  return interpret(PatientSource{document.object()}, interest);
}

}  // namespace

std::optional<qint64> replyIdentifier(std::string_view beginning) {
  constexpr std::string_view first = R"({"id":)";
  if (!beginning.starts_with(first)) return std::nullopt;
  beginning.remove_prefix(first.size());
  qint64 identifier = 0;
  const auto [end, error] =
      std::from_chars(beginning.data(), beginning.data() + beginning.size(), identifier);
  const bool whole = error == std::errc() && end != beginning.data() + beginning.size();
  return whole ? std::optional(identifier) : std::nullopt;
}

MessageReader::MessageReader(MessageInterest interest)
    : interest_(std::move(interest)), parser_(std::make_unique<dom::parser>()) {}

MessageReader::~MessageReader() = default;

Message MessageReader::read(std::string_view text) {
  try {
    const dom::object object = parser_->parse(text.data(), text.size(), false);
    Message message = interpret(FastSource{object}, interest_);
    if (parser_->capacity() > keptParserCapacity) parser_ = std::make_unique<dom::parser>();
    return message;
  } catch (const simdjson::simdjson_error&) {
    return readPatiently(text, interest_);
  }
}

}  // namespace web
