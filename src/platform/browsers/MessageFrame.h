#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <optional>

#include "platform/base/Error.h"

/// Messages of native messaging: a length (32 bits, in the machine's own byte order) and a JSON
/// object in UTF-8. The same form is used between the native host and the running program.
namespace browsers {

/// What a browser passes on to a host at most; one that announces more is refused unread.
inline constexpr quint32 longestMessageIn = 64U * 1024 * 1024;

/// What a browser takes from a host at most.
inline constexpr quint32 longestMessageOut = 1024U * 1024;

QByteArray framed(const QJsonObject& message);

/// Takes a stream of bytes apart. After an error nothing more can be read from it.
class MessageReader {
 public:
  explicit MessageReader(quint32 longestMessage = longestMessageIn) : longest_(longestMessage) {}

  void append(const QByteArray& bytes) { bytes_ += bytes; }

  /// None when the next message has not arrived whole.
  Result<std::optional<QJsonObject>> next();

  /// Whether the stream stands between two messages.
  bool isAtBoundary() const { return bytes_.isEmpty(); }

 private:
  quint32 longest_;
  QByteArray bytes_;
};

}  // namespace browsers
