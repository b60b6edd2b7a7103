#include "platform/browsers/ChunkedText.h"

#include <utility>

#include "platform/browsers/BrowserError.h"

using namespace Qt::StringLiterals;

namespace browsers {

Result<std::optional<QString>> ChunkedText::add(const QJsonObject& chunk) {
  auto outcome = take(chunk);
  if (!outcome || *outcome) *this = ChunkedText();
  return outcome;
}

Result<std::optional<QString>> ChunkedText::take(const QJsonObject& chunk) {
  const int sequence = chunk.value(u"seq"_s).toInt(-1);
  const int total = chunk.value(u"total"_s).toInt(-1);
  const int identifier = chunk.value(u"id"_s).toInt(-1);
  const QJsonValue text = chunk.value(u"text"_s);
  if (next_ == 0) {
    identifier_ = identifier;
    total_ = total;
  }
  const bool fits = identifier == identifier_ && total == total_ && sequence == next_;
  if (!fits || identifier < 0 || total < 1 || total > mostChunks || !text.isString())
    return browserFailure(BadMessage, u"The pieces of the page do not fit together."_s);
  if (text_.size() + text.toString().size() > longestText)
    return browserFailure(TooLarge, u"The page is larger than 256 MB."_s);
  text_ += text.toString();
  if (++next_ < total_) return std::nullopt;
  return std::exchange(text_, {});
}

}  // namespace browsers
