#include "platform/pdf/internal/InvisibleFont.h"

#include <QChar>
#include <QString>
#include <algorithm>
#include <string_view>

#include "platform/pdf/internal/EmptyTrueType.h"

namespace pdf {
namespace {

// Codes of characters in the basic plane are their UTF-16 value. The values of surrogates are no
// characters, so they serve the others, as many as there are.
constexpr char16_t firstFreeCode = 0xD800;
constexpr char16_t lastFreeCode = 0xDFFF;
constexpr int usualWidth = 550;

bool isWide(char32_t character) {
  if (character >= 0x1F300 && character <= 0x1FAFF) return true;  // pictographs
  if (character >= 0x3000 && character <= 0x30FF) return true;    // ideographic punctuation, kana
  if (character >= 0xFF01 && character <= 0xFF60) return true;    // full-width forms
  const QChar::Script script = QChar::script(character);
  return script == QChar::Script_Han || script == QChar::Script_Hangul ||
         script == QChar::Script_Bopomofo;
}

/// Thousandths of the font size, about what text fonts have.
int widthOf(char32_t character) {
  const QChar::Category category = QChar::category(character);
  if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing ||
      category == QChar::Other_Format)
    return 0;
  if (isWide(character)) return 1000;
  if (std::u32string_view(U" iljI.,:;'|!`\u00B7\u2019").find(character) !=
      std::u32string_view::npos)
    return 260;
  if (std::u32string_view(U"frt()[]{}/\\-\"").find(character) != std::u32string_view::npos)
    return 340;
  if (std::u32string_view(U"mwMW@%\u2014\u2026").find(character) != std::u32string_view::npos)
    return 860;
  return category == QChar::Letter_Uppercase ? 680 : usualWidth;
}

QByteArray hex(char16_t unit) {
  return QByteArray::number(unit, 16).rightJustified(4, '0');
}

QByteArray utf16Hex(char32_t character) {
  QByteArray digits;
  for (const QChar unit : QString::fromUcs4(&character, 1))
    digits += hex(unit.unicode());
  return digits;
}

/// Sections of at most 100 lines (Adobe Technical Note #5014, 2.2).
void appendSections(QByteArray& map, const QList<QByteArray>& lines, const QByteArray& name) {
  for (qsizetype begin = 0; begin < lines.size(); begin += 100) {
    const QList<QByteArray> section = lines.mid(begin, 100);
    map += QByteArray::number(section.size()) + " begin" + name + "\n" + section.join('\n') +
           "\nend" + name + "\n";
  }
}

}  // namespace

char16_t InvisibleFont::codeOf(char32_t character) {
  if (character < 0x10000) return static_cast<char16_t>(character);
  const auto known = outsideBasicPlane_.find(character);
  if (known != outsideBasicPlane_.end()) return known->second;
  const size_t next = firstFreeCode + outsideBasicPlane_.size();
  if (next > lastFreeCode) return QChar::ReplacementCharacter;
  return outsideBasicPlane_[character] = static_cast<char16_t>(next);
}

QByteArray InvisibleFont::encode(const std::u32string& text) {
  QByteArray string = "<";
  for (const char32_t character : text) {
    const char16_t code = codeOf(character);
    used_.emplace(code, code == QChar::ReplacementCharacter ? code : character);
    string += hex(code);
  }
  return string + ">";
}

double InvisibleFont::width(const std::u32string& text) const {
  int sum = 0;
  for (const char32_t character : text)
    sum += widthOf(character);
  return (sum > 0 || text.empty() ? sum : usualWidth) / 1000.0;
}

QByteArray InvisibleFont::widths() const {
  QByteArray array = "[";
  for (const auto& [code, character] : used_) {
    const int width = widthOf(character);
    if (width != usualWidth)
      array += ' ' + QByteArray::number(code) + " [" + QByteArray::number(width) + "]";
  }
  return array + " ]";
}

/// Code to text (ISO 32000-1, 9.10.3). Neighbouring codes share a line as long as their first byte
/// is the same.
QByteArray InvisibleFont::characterMap() const {
  QList<QByteArray> single, ranges;
  for (auto begin = used_.begin(); begin != used_.end();) {
    auto last = begin;
    auto end = std::next(begin);
    while (end != used_.end() && end->first == last->first + 1 && end->second == last->second + 1 &&
           end->first / 256 == begin->first / 256 && end->first == end->second) {
      last = end++;
    }
    const QByteArray text = "<" + utf16Hex(begin->second) + ">";
    if (begin == last) {
      single += "<" + hex(begin->first) + "> " + text;
    } else {
      ranges += "<" + hex(begin->first) + "> <" + hex(last->first) + "> " + text;
    }
    begin = end;
  }
  QByteArray map =
      "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
  appendSections(map, single, "bfchar");
  appendSections(map, ranges, "bfrange");
  return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

int InvisibleFont::writeProgram(SequentialFile& file) const {
  const int program = file.reserve(), descriptor = file.reserve();
  const QByteArray font = emptyTrueType();
  file.writeStream(program, "/Length1 " + QByteArray::number(font.size()), font);
  file.writeObject(
      descriptor,
      "<< /Type /FontDescriptor /FontName /Invisible /Flags 4 /FontBBox [0 -200 1000 800] "
      "/ItalicAngle 0 /Ascent 800 /Descent -200 /CapHeight 800 /StemV 80 /FontFile2 " +
          SequentialFile::reference(program) + " >>");
  return descriptor;
}

void InvisibleFont::write(SequentialFile& file, int object) const {
  const int descriptor = writeProgram(file);
  const int glyphs = file.reserve(), map = file.reserve(), descendant = file.reserve();
  // Every code shows the font's one empty glyph.
  file.writeStream(glyphs, {}, QByteArray("\0\1", 2).repeated(0x10000));
  file.writeStream(map, {}, characterMap());
  file.writeObject(descendant,
                   "<< /Type /Font /Subtype /CIDFontType2 /BaseFont /Invisible "
                   "/CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >> "
                   "/FontDescriptor " +
                       SequentialFile::reference(descriptor) + " /DW " +
                       QByteArray::number(usualWidth) + " /W " + widths() + " /CIDToGIDMap " +
                       SequentialFile::reference(glyphs) + " >>");
  file.writeObject(object,
                   "<< /Type /Font /Subtype /Type0 /BaseFont /Invisible /Encoding /Identity-H "
                   "/DescendantFonts [" +
                       SequentialFile::reference(descendant) + "] /ToUnicode " +
                       SequentialFile::reference(map) + " >>");
}

}  // namespace pdf
