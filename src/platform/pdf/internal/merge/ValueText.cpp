#include "platform/pdf/internal/merge/ValueText.h"

#include <algorithm>

namespace pdf {

void appendWord(std::string& text, std::string_view word) {
  // A name can be empty, only its slash.
  const bool joins = !text.empty() && (isRegular(text.back()) || text.back() == '/');
  if (joins && isRegular(word.front())) text += ' ';
  text += word;
}

void ValueText::append(std::string& text, const Value& value) {
  switch (value.kind) {
    case Value::Kind::Null:
      return appendWord(text, "null");
    case Value::Kind::Reference:
      return appendReference(text, value.reference);
    case Value::Kind::Dictionary:
      text += "<<";
      appendEntries(text, value, {});
      text += ">>";
      return;
    case Value::Kind::Array:
      text += '[';
      for (const Value& item : value.items())
        append(text, item);
      text += ']';
      return;
    default:
      return appendWord(text, value.text);
  }
}

void ValueText::appendReference(std::string& text, int object) {
  appendWord(text, referenceText(object));
}

void ValueText::appendEntries(std::string& text, const Value& dictionary,
                              std::initializer_list<std::string_view> except) {
  for (std::uint32_t index = 0; index < dictionary.count; index += 2) {
    const std::string_view key = dictionary.items()[index].text;
    if (std::find(except.begin(), except.end(), key) != except.end()) continue;
    text += key;
    append(text, dictionary.items()[index + 1]);
  }
}

}  // namespace pdf
