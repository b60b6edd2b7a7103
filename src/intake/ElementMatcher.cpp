#include "intake/ElementMatcher.h"

namespace {

constexpr char16_t longS = u'\u017F';
constexpr char16_t kelvinSign = u'\u212A';
constexpr char16_t longSTLigature = u'\uFB05';
constexpr char16_t stLigature = u'\uFB06';

/// The ASCII character that this one is when case does not count; itself when there is none.
char16_t folded(char16_t character) {
  if (character >= u'A' && character <= u'Z') return character | 0x20;
  if (character == longS) return u's';
  if (character == kelvinSign) return u'k';
  return character;
}

bool isSTLigature(char16_t character) {
  return character == longSTLigature || character == stLigature;
}

/// How many units of `text` at `position` are `word`; 0 when they are not.
qsizetype matchLength(QStringView text, qsizetype position, QStringView word) {
  qsizetype at = position;
  for (qsizetype i = 0; i < word.size(); ++i, ++at) {
    if (at == text.size()) return 0;
    const char16_t character = text[at].unicode();
    if (folded(character) == word[i].unicode()) continue;
    if (!isSTLigature(character) || !word.sliced(i).startsWith(u"st")) return 0;
    ++i;
  }
  return at - position;
}

}  // namespace

std::optional<ElementMatcher::Range> ElementMatcher::find(QStringView word, qsizetype from) const {
  for (qsizetype at = text_.indexOf(u'<', from); at >= 0; at = text_.indexOf(u'<', at + 1)) {
    if (const qsizetype length = matchLength(text_, at, word)) return Range{at, at + length};
  }
  return std::nullopt;
}

std::optional<ElementMatch> ElementMatcher::next() {
  const auto opening = find(opening_, position_);
  const auto closing = opening ? find(closing_, opening->end) : std::nullopt;
  if (!closing) {
    // What is not closed from here is not closed from any later opening either.
    position_ = text_.size();
    return std::nullopt;
  }
  position_ = closing->end;
  return ElementMatch{opening->start, opening->end, closing->start, closing->end};
}
