#include "platform/pdf/internal/VisualOrder.h"

#include <algorithm>

namespace pdf {
namespace {

enum class Strength { LeftToRight, RightToLeft, Neutral };

Strength strengthOf(char32_t character) {
  switch (QChar::direction(character)) {
    case QChar::DirL:
    case QChar::DirEN:
    case QChar::DirAN:
      return Strength::LeftToRight;
    case QChar::DirR:
    case QChar::DirAL:
      return Strength::RightToLeft;
    default:
      return Strength::Neutral;
  }
}

Strength baseStrength(TextDirection direction) {
  return direction == TextDirection::RightToLeft ? Strength::RightToLeft : Strength::LeftToRight;
}

/// Neutral characters go with their neighbours where both agree, else with the line (UAX #9, N1 and
/// N2); marks go with the character they stand on (W1).
std::vector<Strength> resolved(const std::u32string& text, Strength base) {
  std::vector<Strength> strengths(text.size());
  for (size_t index = 0; index < text.size(); ++index) {
    strengths[index] = strengthOf(text[index]);
    const bool mark = QChar::direction(text[index]) == QChar::DirNSM;
    if (mark) strengths[index] = index > 0 ? strengths[index - 1] : base;
  }
  for (size_t begin = 0; begin < text.size();) {
    if (strengths[begin] != Strength::Neutral) {
      ++begin;
      continue;
    }
    size_t end = begin;
    while (end < text.size() && strengths[end] == Strength::Neutral)
      ++end;
    const Strength before = begin > 0 ? strengths[begin - 1] : base;
    const Strength after = end < text.size() ? strengths[end] : base;
    std::fill(strengths.begin() + static_cast<std::ptrdiff_t>(begin),
              strengths.begin() + static_cast<std::ptrdiff_t>(end),
              before == after ? before : base);
    begin = end;
  }
  return strengths;
}

/// Reverses each stretch of `strength`.
void reverseStretches(std::u32string& text, std::vector<Strength>& strengths, Strength strength) {
  for (size_t begin = 0; begin < text.size(); ++begin) {
    size_t end = begin;
    while (end < text.size() && strengths[end] == strength)
      ++end;
    std::reverse(text.begin() + static_cast<std::ptrdiff_t>(begin),
                 text.begin() + static_cast<std::ptrdiff_t>(end));
    begin = std::max(begin, end);
  }
}

}  // namespace

std::u32string visualOrder(const QString& text, TextDirection direction) {
  std::u32string characters = text.toStdU32String();
  const Strength base = baseStrength(direction);
  std::vector<Strength> strengths = resolved(characters, base);
  reverseStretches(characters, strengths, Strength::RightToLeft);
  if (base == Strength::LeftToRight) return characters;
  // The stretches of a right-to-left line follow one another from the right.
  std::u32string line;
  for (size_t end = characters.size(); end > 0;) {
    size_t begin = end - 1;
    while (begin > 0 && strengths[begin - 1] == strengths[end - 1])
      --begin;
    line.append(characters, begin, end - begin);
    end = begin;
  }
  return line;
}

}  // namespace pdf
