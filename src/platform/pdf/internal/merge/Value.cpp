#include "platform/pdf/internal/merge/Value.h"

#include <array>
#include <charconv>

namespace pdf {
namespace {

enum class ByteKind : unsigned char { Regular, Space, Delimiter };

constexpr std::array<ByteKind, 256> byteKinds = [] {
  std::array<ByteKind, 256> kinds{};
  for (const char space : std::string_view("\0\t\n\f\r ", 6))
    kinds[static_cast<unsigned char>(space)] = ByteKind::Space;
  for (const char delimiter : std::string_view("()<>[]{}/%"))
    kinds[static_cast<unsigned char>(delimiter)] = ByteKind::Delimiter;
  return kinds;
}();

constexpr char hexDigits[] = "0123456789abcdef";

int hexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

std::string nameBytes(std::string_view name) {
  std::string bytes;
  for (size_t index = 1; index < name.size(); ++index) {
    const bool escaped = name[index] == '#' && index + 2 < name.size() &&
                         hexValue(name[index + 1]) >= 0 && hexValue(name[index + 2]) >= 0;
    if (!escaped) {
      bytes += name[index];
      continue;
    }
    bytes += static_cast<char>(hexValue(name[index + 1]) * 16 + hexValue(name[index + 2]));
    index += 2;
  }
  return bytes;
}

std::string hexBytes(std::string_view text) {
  std::string bytes;
  int high = -1;
  for (const char digit : text) {
    const int value = hexValue(digit);
    if (value < 0) continue;
    if (high >= 0) bytes += static_cast<char>(high * 16 + value);
    high = high >= 0 ? -1 : value;
  }
  if (high >= 0) bytes += static_cast<char>(high * 16);
  return bytes;
}

/// The escapes of literal strings (ISO 32000-1, table 3).
class LiteralReader {
 public:
  explicit LiteralReader(std::string_view inner) : rest_(inner) {}

  std::string read() {
    std::string bytes;
    while (!rest_.empty()) {
      const char byte = take();
      if (byte == '\\') {
        readEscape(bytes);
      } else {
        bytes += byte == '\r' ? lineEnd() : byte;
      }
    }
    return bytes;
  }

 private:
  char take() {
    const char byte = rest_.front();
    rest_.remove_prefix(1);
    return byte;
  }

  char lineEnd() {
    if (!rest_.empty() && rest_.front() == '\n') take();
    return '\n';
  }

  void readEscape(std::string& bytes) {
    if (rest_.empty()) return;
    const char byte = take();
    constexpr std::string_view letters = "nrtbf", meanings = "\n\r\t\b\f";
    const size_t letter = letters.find(byte);
    if (letter != std::string_view::npos) {
      bytes += meanings[letter];
    } else if (byte >= '0' && byte <= '7') {
      bytes += octal(byte);
    } else if (byte == '\r') {
      lineEnd();
    } else if (byte != '\n') {
      bytes += byte;
    }
  }

  char octal(char first) {
    int value = first - '0';
    for (int digit = 0; digit < 2 && !rest_.empty(); ++digit) {
      if (rest_.front() < '0' || rest_.front() > '7') break;
      value = value * 8 + (take() - '0');
    }
    return static_cast<char>(value);
  }

  std::string_view rest_;
};

}  // namespace

bool isSpace(char byte) {
  return byteKinds[static_cast<unsigned char>(byte)] == ByteKind::Space;
}

bool isRegular(char byte) {
  return byteKinds[static_cast<unsigned char>(byte)] == ByteKind::Regular;
}

bool isPlainInName(char byte) {
  return byte > ' ' && byte <= '~' && byte != '#' && isRegular(byte);
}

const Value& Value::operator[](std::string_view key) const {
  static const Value none;
  if (!isDictionary()) return none;
  for (std::uint32_t index = 0; index < count; index += 2) {
    if (first[index].text == key) return first[index + 1];
  }
  return none;
}

std::optional<long long> Value::integer() const {
  if (kind != Kind::Number) return std::nullopt;
  long long number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

std::optional<double> Value::number() const {
  if (kind != Kind::Number) return std::nullopt;
  // A sign that PDF allows and from_chars does not.
  const std::string_view digits = text.substr(text.front() == '+' ? 1 : 0);
  double number = 0;
  const char* end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, number, std::chars_format::fixed);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

std::string Value::bytes() const {
  if (isName()) return nameBytes(text);
  if (!isString()) return {};
  const std::string_view inner = text.substr(1, text.size() - 2);
  if (text.front() == '<') return hexBytes(inner);
  const bool isPlain = inner.find_first_of("\\\r") == std::string_view::npos;
  return isPlain ? std::string(inner) : LiteralReader(inner).read();
}

std::string stringText(std::string_view bytes) {
  std::string text = "(";
  for (const char byte : bytes) {
    if (byte == '(' || byte == ')' || byte == '\\') text += '\\';
    // A bare one would be read as a line feed.
    byte == '\r' ? text += "\\r" : text += byte;
  }
  return text + ")";
}

std::string nameText(std::string_view bytes) {
  std::string text = "/";
  for (const char byte : bytes) {
    if (isPlainInName(byte)) {
      text += byte;
      continue;
    }
    const auto code = static_cast<unsigned char>(byte);
    text += {'#', hexDigits[code / 16], hexDigits[code % 16]};
  }
  return text;
}

std::string referenceText(int object) {
  return std::to_string(object) + " 0 R";
}

}  // namespace pdf
