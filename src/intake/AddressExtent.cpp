#include "intake/AddressExtent.h"

#include <array>

namespace AddressExtent {
namespace {

constexpr QStringView opening = u"([{";
constexpr QStringView closing = u")]}";

bool isEastAsianPunctuation(char16_t character) {
  return (character >= 0x3000 && character <= 0x3003) ||
         (character >= 0x3008 && character <= 0x3020) ||
         (character >= 0xFF01 && character <= 0xFF0F) ||
         (character >= 0xFF1A && character <= 0xFF20) ||
         (character >= 0xFF3B && character <= 0xFF40) ||
         (character >= 0xFF5B && character <= 0xFF65);
}

bool isTypographicQuote(char16_t character) {
  return (character >= 0x2018 && character <= 0x201F) || character == 0x2039 ||
         character == 0x203A || character == 0xAB || character == 0xBB;
}

bool endsAddress(QChar character) {
  if (character.unicode() < 0x80) {
    return character.unicode() <= u' ' || character.unicode() == 0x7F ||
           QStringView(u"<>\"`|\\^").contains(character);
  }
  return character.isSpace() || !(character.isPrint() || character.isSurrogate()) ||
         isTypographicQuote(character.unicode()) || isEastAsianPunctuation(character.unicode());
}

/// Text that was once HTML: the mark that it stands for ends the address.
bool isEntityOfMarkAt(QStringView text, qsizetype position) {
  const QStringView rest = text.sliced(position);
  for (const QStringView entity : {u"&gt;", u"&lt;", u"&quot;", u"&apos;", u"&#39;", u"&nbsp;"}) {
    if (rest.startsWith(entity)) return true;
  }
  return false;
}

bool nextOfListAt(QStringView text, qsizetype position) {
  const char16_t separator = text[position].unicode();
  return (separator == u',' || separator == u';') && isWebSchemeAt(text, position + 1);
}

/// Counts the brackets that the address opens.
class Brackets {
 public:
  /// Whether the character closes a bracket that was not opened inside.
  bool areLeftBy(QChar character) {
    if (const qsizetype kind = opening.indexOf(character); kind >= 0) ++open_[kind];
    const qsizetype kind = closing.indexOf(character);
    return kind >= 0 && --open_[kind] < 0;
  }

 private:
  std::array<int, 3> open_{};
};

bool isEmphasis(QChar character) {
  return QStringView(u"'*_~").contains(character);
}

/// Without the sentence's punctuation.
qsizetype trimmedEnd(QStringView text, qsizetype from, qsizetype end, QChar before) {
  const auto isTrailing = [before](QChar character) {
    return QStringView(u".,;:!?'\u2026([{").contains(character) ||
           (isEmphasis(before) && character == before);
  };
  while (end > from && isTrailing(text[end - 1]))
    --end;
  return end;
}

}  // namespace

bool isWebSchemeAt(QStringView text, qsizetype position) {
  const QStringView rest = text.sliced(position);
  return rest.startsWith(u"http://", Qt::CaseInsensitive) ||
         rest.startsWith(u"https://", Qt::CaseInsensitive);
}

qsizetype endOf(QStringView text, qsizetype start, qsizetype from) {
  const QChar before = start > 0 ? text[start - 1] : QChar(u' ');
  Brackets brackets;
  qsizetype end = from;
  for (; end < text.size(); ++end) {
    const QChar character = text[end];
    if (endsAddress(character) || brackets.areLeftBy(character)) break;
    if (character == u'\'' && before == u'\'') break;
    if (character == u'&' && isEntityOfMarkAt(text, end)) break;
    if (nextOfListAt(text, end)) break;
  }
  return trimmedEnd(text, from, end, before);
}

}  // namespace AddressExtent
