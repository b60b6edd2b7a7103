#pragma once

#include <QByteArray>
#include <map>
#include <string>

#include "platform/pdf/internal/SequentialFile.h"

namespace pdf {

/// A font whose glyphs are all empty, for text that is laid invisibly over a picture. It has a code
/// for every character, tells readers which character each code is, and gives characters their
/// usual proportions.
class InvisibleFont {
 public:
  /// Share of the font size above and below the base line; together 1, so that a line of the font's
  /// size is just as high as its box.
  static constexpr double ascent = 0.8;
  static constexpr double descent = 0.2;

  /// The string to show, as a hexadecimal string object.
  QByteArray encode(const std::u32string& text);

  /// Width of the text at size 1. Never zero unless the text is empty.
  double width(const std::u32string& text) const;

  /// Writes the font for the characters that were encoded.
  void write(SequentialFile& file, int object) const;

 private:
  char16_t codeOf(char32_t character);
  QByteArray widths() const;
  QByteArray characterMap() const;
  int writeProgram(SequentialFile& file) const;

  std::map<char16_t, char32_t> used_;
  std::map<char32_t, char16_t> outsideBasicPlane_;
};

}  // namespace pdf
