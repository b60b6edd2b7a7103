#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>

#include "platform/base/Error.h"

namespace browsers {

/// Puts a long text together from messages with "id" (any number, the same in all), "seq" (from 0,
/// in order), "total" and "text".
class ChunkedText {
 public:
  /// UTF-16 units: as much as a capture request may have.
  static constexpr qsizetype longestText = 256LL * 1024 * 1024;
  /// Far more than a sender needs that fills its messages.
  static constexpr int mostChunks = 4096;

  /// The text when this was its last piece, none when more is to come. After an error, and after
  /// the last piece, the next text begins.
  Result<std::optional<QString>> add(const QJsonObject& chunk);

 private:
  Result<std::optional<QString>> take(const QJsonObject& chunk);

  int identifier_ = 0;
  int total_ = 0;
  int next_ = 0;
  QString text_;
};

}  // namespace browsers
