#pragma once

#include <QJsonObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>

#include "platform/base/Error.h"
#include "platform/web/Command.h"

namespace simdjson::dom {
class parser;
}

namespace web {

struct ReplyMessage {
  qint64 identifier = 0;
  /// An error's description is the browser's own text.
  Result<DataReply> reply;
};

struct EventMessage {
  QString session;
  QString method;
  QJsonObject parameters;
};

/// Nothing that anybody waits for.
struct IgnoredMessage {};

struct DamagedMessage {
  QString reason;
};

using Message = std::variant<IgnoredMessage, ReplyMessage, EventMessage, DamagedMessage>;

/// Asked while a message is read, to skip the work that nobody needs.
struct MessageInterest {
  /// None: nobody waits for the reply.
  std::function<std::optional<ReplyForm>(qint64 identifier)> replyForm;
  std::function<bool(const QString& method)> wantsEvent;
};

/// The identifier of the reply that begins so, as far as that can be told: it comes first in the
/// messages of the browsers we know.
std::optional<qint64> replyIdentifier(std::string_view beginning);

/// Reads messages of the DevTools protocol. Used by one thread.
class MessageReader {
 public:
  explicit MessageReader(MessageInterest interest);
  ~MessageReader();

  /// Transport::padding bytes behind `text` must be readable.
  Message read(std::string_view text);

 private:
  MessageInterest interest_;
  std::unique_ptr<simdjson::dom::parser> parser_;
};

}  // namespace web
